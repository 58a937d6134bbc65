# Case e: haploid nucleotide markers of influenza H3N2 (package adegenet): linkage disequilibrium
# of phased data and exact tests of differentiation.   CASE_TOOLS=../tools Rscript make.R
source(file.path(Sys.getenv("CASE_TOOLS"), "tov.R"))
suppressMessages({library(adegenet); library(genetics)})
data(H3N2); d <- as.matrix(genind2df(H3N2, usepop = FALSE)); rownames(d) <- indNames(H3N2); inf <- H3N2$other$x; yr <- inf$year; ct <- inf$country
# ---- linkage disequilibrium: seven sites, two samples (USA 2003, Japan 2005)
ld <- c("129", "376", "685", "676", "577", "666", "334")
pick <- function(k, n, loci) { i <- which(k & rowSums(is.na(d[, loci])) == 0); i[seq_len(min(n, length(i)))] }
sam <- list(USA2003 = pick(ct == "USA" & yr == 2003, 60, ld), Japan2005 = pick(ct == "Japan" & yr == 2005, 45, ld))
bodyh <- function(i, loci) { h <- apply(d[i, loci, drop = FALSE], 1, paste, collapse = " "); paste(paste0("s", i), 1, h, sep = "\t") }
write_tvp("h3n2-ld.tvp", tvp_profile("Influenza H3N2, seven nucleotide sites", length(sam), "STANDARD"), "", "[[Samples]]", unlist(lapply(names(sam), function(p) tvp_sample(p, length(sam[[p]]), bodyh(sam[[p]], ld)))))
write_tvs("ld.tvs", TaskNumber = 16, AllowedLevelOfMissingData = 0, MakeExactTestLD = 1, MarkovChainStepsLD = 100000, MarkovChainDememorisationStepsLD = 10000, ComputeDvalues = 1, PrintFlagHistogramLD = 1)
write_tvs("ld-long.tvs", TaskNumber = 16, AllowedLevelOfMissingData = 0, MakeExactTestLD = 1, MarkovChainStepsLD = 1000000, MarkovChainDememorisationStepsLD = 10000, ComputeDvalues = 0)
DV <- "heading 'Loci a and b' between rules of dashes (sites counted from 0)"
for (p in names(sam)) { z <- d[sam[[p]], ld]; al <- apply(z, 2, function(q) length(unique(q))); cat(p, "alleles per site", al, "\n")
  for (b in seq_along(ld)[-1]) for (a in 1:(b - 1)) { if (al[a] < 2 || al[b] < 2) next
    t <- table(z[, a], z[, b]); n <- sum(t); pa <- rowSums(t) / n; pb <- colSums(t) / n; e <- outer(pa, pb); D <- t / n - e
    mx <- ifelse(D > 0, pmin(outer(1 - pa, pb), outer(pa, 1 - pb)), pmin(e, outer(1 - pa, 1 - pb))); r <- D / sqrt(outer(pa * (1 - pa), pb * (1 - pb))); x2 <- n * r^2
    id <- sprintf("%s.%d-%d", p, a - 1, b - 1); cells <- function(M) setNames(as.list(as.vector(M)), as.vector(outer(rownames(t), colnames(t), paste, sep = "/")))
    if (all(dim(t) == 2)) { c0 <- suppressWarnings(chisq.test(t, correct = FALSE)); stopifnot(all.equal(unname(c0$statistic), x2[1]), all.equal(c0$p.value, pchisq(x2[1], 1, lower.tail = FALSE)))
      g <- genetics::LD(genotype(paste(z[, a], z[, a], sep = "/")), genotype(paste(z[, b], z[, b], sep = "/"))); stopifnot(abs(abs(g$D) - abs(D[1])) < 1e-4, abs(abs(g$r) - abs(r[1])) < 0.02) }
    pe <- "R: table, chisq.test(correct = FALSE); genetics::LD for D and r where both sites have two alleles"
    A <- function(k, v, tol, lab, ...) add(paste0(id, ".", k), v, tol, "h3n2-ld.tvp", "ld.tvs", DV, lab, p, peer = pe, note = "cells named first/second allele; compare to the printed decimals", ...)
    A("counts", cells(t), 0, "1: Observed contingency table"); A("expected", cells(n * e), 6e-3, "2: Expected table"); A("D", cells(D), 6e-3, "3: Table of disequilibrium values"); A("Dprime", cells(D / mx), 6e-3, "4: Table of standardized disequilibrium values (D'=D/Dmax)")
    A("r", cells(r), 6e-3, "4: Table of standardized disequilibrium values (r2): D/sqrt(pa(1-pa)pb(1-pb)), that is r with its sign, not its square"); A("chi2", cells(x2), 6e-3, "5: Table of Chi-square values"); A("chi2P", cells(pchisq(x2, 1, lower.tail = FALSE)), 6e-3, "6: Table of Chi-square P values (1 d.f.)")
    fp <- fisher.test(t, workspace = 2e7)$p.value
    nt <- if (all(dim(t) == 2)) { m <- rowSums(t); q <- dhyper(max(0, colSums(t)[1] - m[2]):min(m[1], colSums(t)[1]), m[1], m[2], colSums(t)[1]); o <- dhyper(t[1, 1], m[1], m[2], colSums(t)[1]); sum(q[q < o * (1 - 1e-7)]) } else NULL
    for (run in c("ld.tvs", "ld-long.tvs")) add(paste0(id, ".P.", sub("\\.tvs", "", run)), fp, if (run == "ld.tvs") 0.03 else 0.012, "h3n2-ld.tvp", run, "Exact test using a Markov chain :", sprintf("Pair (%d, %d) Exact P", a - 1, b - 1), p, how = "monte-carlo", peer = "fisher.test (exact)", without_ties = nt) } }
# ---- exact tests of differentiation: haplotypes of three sites in five samples
ex <- c("594", "468", "334"); def <- list(USA2005 = list("USA", 2005, 16), Austria2005 = list("Austria", 2005, 12), Italy2005 = list("Italy", 2005, 14), Japan2005 = list("Japan", 2005, 10), USA2003 = list("USA", 2003, 9)); S <- lapply(def, function(q) pick(ct == q[[1]] & yr == q[[2]], q[[3]], ex)); hp <- function(i) apply(d[i, ex], 1, paste, collapse = " ")
all <- unlist(lapply(S, hp)); u <- unique(all); T <- t(sapply(S, function(i) table(factor(hp(i), u)))); print(T)
idh <- sprintf("H%d", seq_along(u))
write_tvp("h3n2-diff.tvp", tvp_profile("Influenza H3N2, haplotypes of three sites", length(S), "STANDARD"), "", "[[Samples]]", unlist(lapply(names(S), function(p) { k <- T[p, ] > 0; tvp_sample(p, sum(T[p, ]), paste(idh[k], T[p, k], u[k], sep = "\t")) })))
write_tvs("diff.tvs", TaskNumber = 8192, AllowedLevelOfMissingData = 0, NumPermutPopDiff = 1000000, NumDememoPopDiff = 10000)
set.seed(3); gl <- fisher.test(T, simulate.p.value = TRUE, B = 1e6)$p.value; ge <- tryCatch(fisher.test(T, workspace = 2e7)$p.value, error = function(e) NA); cat("global simulated", gl, "exact", ge, "\n")
EX <- "== Exact Test of Sample Differentiation Based on Haplotype Frequencies"; g <- if (is.na(ge)) gl else ge
add("diff.global", g, 0.003, "h3n2-diff.tvp", "diff.tvs", EX, "Non-differentiation: Exact P value", how = "monte-carlo", peer = if (is.na(ge)) "fisher.test(simulate.p.value = TRUE, B = 1e6)" else "fisher.test, exact on the 5 x k table")
P <- matrix(0, length(S), length(S)); for (i in 2:length(S)) for (j in 1:(i - 1)) { t <- T[c(i, j), ]; P[i, j] <- fisher.test(t[, colSums(t) > 0], workspace = 2e7)$p.value }
add("diff.pairs", lower(P), 0.01, "h3n2-diff.tvp", "diff.tvs", EX, "Non-differentiation exact P values", how = "monte-carlo", peer = "fisher.test on each pair (exact)")
print(round(P, 5))
# a global test that is not extreme: three random parts of one sample
ex <- c("577", "666", "334", "517"); ix <- pick(ct == "Japan" & yr == 2005, 66, ex); set.seed(4); ix <- sample(ix); S3 <- list(A = ix[1:22], B = ix[23:44], C = ix[45:66]); T3 <- t(sapply(S3, function(i) table(factor(hp(i), unique(hp(ix)))))); print(T3)
write_tvp("h3n2-same.tvp", tvp_profile("Influenza H3N2, Japan 2005 in three random parts", 3, "STANDARD"), "", "[[Samples]]", unlist(lapply(names(S3), function(p) { k <- T3[p, ] > 0; tvp_sample(p, 22, paste(paste0("J", which(k)), T3[p, k], colnames(T3)[k], sep = "\t")) })))
add("same.global", fisher.test(T3, workspace = 2e8)$p.value, 0.01, "h3n2-same.tvp", "diff.tvs", EX, "Non-differentiation: Exact P value", how = "monte-carlo", peer = "fisher.test, exact")
P3 <- matrix(0, 3, 3); for (i in 2:3) for (j in 1:(i - 1)) { t <- T3[c(i, j), ]; P3[i, j] <- fisher.test(t[, colSums(t) > 0])$p.value }
add("same.pairs", lower(P3), 0.01, "h3n2-same.tvp", "diff.tvs", EX, "Non-differentiation exact P values", how = "monte-carlo", peer = "fisher.test, exact"); print(P3)
# the first three samples of the first project by themselves
TT <- T[1:3, colSums(T[1:3, ]) > 0]; gx <- fisher.test(TT, workspace = 2e8)$p.value; cat("three", gx, "\n")
write_tvp("h3n2-three.tvp", tvp_profile("Influenza H3N2, haplotypes of three sites, three samples", 3, "STANDARD"), "", "[[Samples]]", unlist(lapply(names(S)[1:3], function(p) { k <- T[p, ] > 0; tvp_sample(p, sum(T[p, ]), paste(idh[k], T[p, k], u[k], sep = "\t")) })))
add("three.global", gx, 0.004, "h3n2-three.tvp", "diff.tvs", EX, "Non-differentiation: Exact P value", how = "monte-carlo", peer = "fisher.test, exact on the 3 x k table")
# ---- indices of a STANDARD sample
SI <- "== Standard diversity indices"; write_tvs("std.tvs", TaskNumber = 3, AllowedLevelOfMissingData = 0, ComputeStandardDiversityIndices = 1, ComputeTheta = 5)
for (p in names(S)) { f <- T[p, ]; n <- sum(f); k <- sum(f > 0); H <- (1 - sum((f / n)^2)) * n / (n - 1); A <- function(id, v, tol, lab, sec = SI, ...) add(paste0("std.", p, ".", id), v, tol, "h3n2-diff.tvp", "std.tvs", sec, lab, p, ...)
  A("copies", n, 0, "No. of gene copies"); A("haplotypes", k, 0, "No. of haplotypes"); A("gene_diversity", H, 6e-5, "Gene diversity")
  hets <- sapply(1:3, function(l) { q <- table(substr(gsub(" ", "", rep(u, f)), l, l)) / n; (1 - sum(q^2)) * n / (n - 1) })
  A("het_per_locus", hets[hets > 0], 6e-6, "Exp. Het, polymorphic loci in order")
  A("pi", sum(hets), 1e-6, "Mean number of pairwise differences", "== Molecular diversity indices"); A("avg", sum(hets) / 3, 1e-6, "Average gene diversity over loci", "== Molecular diversity indices")
  if (k > 1 && k < n) A("theta_k", uniroot(function(t) sum(t / (t + 0:(n - 1))) - k, c(1e-6, 1e6), tol = 1e-12)$root, 2e-6, "Theta(k)", "== Molecular diversity indices") }
write_expected("expected.json", "snp", "adegenet::H3N2: nucleotides at polymorphic sites of 1903 haemagglutinin sequences.")
