# Functions of the reference cases: writers of project (.tvp) and settings (.tvs)
# files and of expected.json.  Base R plus jsonlite.
.args <- commandArgs(FALSE)
options(scipen = 100)
TOOLS <- Sys.getenv("CASE_TOOLS", unset = "")
stopifnot(nzchar(TOOLS))

# ---- settings ------------------------------------------------------------
write_tvs <- function(path, ...) {
  over <- list(...)
  L <- readLines(file.path(TOOLS, "settings_base.tvs"))
  for (k in names(over)) {
    i <- grep(paste0("^", k, "="), L)
    if (length(i) != 1) stop("no such key: ", k)
    old <- sub("^[^=]*=", "", L[i]); v <- over[[k]]
    s <- if (grepl("e", old)) sprintf("%e", v) else
         if (grepl("\\.", old)) sprintf("%f", v) else
         if (is.character(v)) v else sprintf("%d", as.integer(v))
    L[i] <- paste0(k, "=", s)
  }
  # both keys share one field, the second is read last
  if (!is.null(over$PrintHaplDistMat))
    L[grep("^PrintPopDistMat=", L)] <- paste0("PrintPopDistMat=", as.integer(over$PrintHaplDistMat))
  writeLines(L, path)
}

# ---- project -------------------------------------------------------------
tvp_profile <- function(title, nb, type, genotypic = 0, phase = 1, sep = "WHITESPACE",
                        missing = "?", frequency = "ABS")
  c("[Profile]",
    sprintf("\tTitle=\"%s\"", title), sprintf("\tNbSamples=%d", nb),
    sprintf("\tDataType=%s", type), sprintf("\tGenotypicData=%d", genotypic),
    sprintf("\tGameticPhase=%d", phase), sprintf("\tLocusSeparator=%s", sep),
    "\tRecessiveData=0", sprintf("\tMissingData='%s'", missing),
    sprintf("\tFrequency=%s", frequency), "", "[Data]")

tvp_hapllist <- function(name, ids, defs)
  c("", "[[HaplotypeDefinition]]", sprintf("\tHaplListName=\"%s\"", name), "\tHaplList={",
    paste0("\t\t", ids, "\t", defs), "\t}")

tvp_matrix <- function(name, M, labels = rownames(M), digits = 15) {
  n <- nrow(M)
  rows <- vapply(seq_len(n), function(i) paste(format(M[i, 1:i], digits = digits, trim = TRUE), collapse = " "), "")
  c("", "[[DistanceMatrix]]", sprintf("\tMatrixName=\"%s\"", name), sprintf("\tMatrixSize=%d", n),
    "\tLabelPosition=LINE", "\tMatrixData={",
    paste0("\t\t", paste(sprintf("\"%s\"", labels), collapse = " ")), paste0("\t\t", rows), "\t}")
}

# body: character vector of data lines
tvp_sample <- function(name, size, body)
  c("", sprintf("\tSampleName=\"%s\"", name), sprintf("\tSampleSize=%d", size), "\tSampleData={",
    paste0("\t\t", body), "\t}")

# two lines per individual; g1, g2: matrices of allele codes (individuals x loci)
geno_body <- function(ids, g1, g2, freq = rep(1, length(ids)))
  as.vector(rbind(paste(ids, freq, apply(g1, 1, paste, collapse = " "), sep = "\t"),
                  paste("", "", apply(g2, 1, paste, collapse = " "), sep = "\t")))

tvp_structure <- function(name, groups)
  c("", "[[Structure]]", sprintf("\tStructureName=\"%s\"", name), sprintf("\tNbGroups=%d", length(groups)),
    unlist(lapply(groups, function(g) c("\tGroup={", sprintf("\t\t\"%s\"", g), "\t}"))))

tvp_mantel <- function(mats, ymatrix, labels, used = labels, matnumber = length(mats), digits = 15) {
  n <- length(labels)
  tri <- function(M) c("\tDistMatMantel={", vapply(seq_len(n), function(i)
    paste0("\t\t", paste(format(M[i, 1:i], digits = digits, trim = TRUE), collapse = " ")), ""), "\t}")
  c("", "[[Mantel]]", sprintf("\tMatrixSize=%d", n), sprintf("\tMatrixNumber=%d", matnumber),
    sprintf("\tYMatrix=\"%s\"", ymatrix), "\tYMatrixLabels={", sprintf("\t\t\"%s\"", labels), "\t}",
    unlist(lapply(mats, tri)), "\tUsedYMatrixLabels={", sprintf("\t\t\"%s\"", used), "\t}")
}
write_tvp <- function(path, ...) writeLines(sub("[ \t]+$", "", c(...)), path)

# ---- expected values -----------------------------------------------------
.checks <- list()
# tol: absolute tolerance; the printed number is rounded, so `tol` is half a unit of
# the last printed place where the document says how many are printed, plus slack.
add <- function(id, value, tol, project, run, section, label, sample = NULL,
                how = "exact", peer = NULL, note = NULL, se = NULL, ...) {
  e <- list(id = id, value = value, tol = tol, kind = how, project = project, run = run,
            section = section, label = label)
  if (!is.null(sample)) e$sample <- sample
  if (!is.null(peer)) e$peer <- peer
  if (!is.null(note)) e$note <- note
  if (!is.null(se)) e$se <- se
  .checks[[length(.checks) + 1]] <<- c(e, list(...))
}
# Monte-Carlo against Monte-Carlo (or against an exact value: se_ref = 0)
tol_p <- function(p, n_run, se_ref = 0, k = 5) k * sqrt(max(p, 1 / n_run) * max(1 - p, 1 / n_run) / n_run + se_ref^2) + 1 / n_run
write_expected <- function(path, case, intro) {
  stopifnot(!anyDuplicated(vapply(.checks, `[[`, "", "id")))
  writeLines(jsonlite::toJSON(list(case = case, about = intro, checks = .checks),
             auto_unbox = TRUE, digits = NA, pretty = TRUE, null = "null", matrix = "rowmajor"), path)
  cat(case, ":", length(.checks), "checks\n")
}
lower <- function(M) { M <- as.matrix(M); lapply(seq_len(nrow(M))[-1], function(i) unname(as.list(M[i, 1:(i - 1)]))) }

run_tool <- function(tool, args = character(), input = NULL) {
  bin <- file.path(tempdir(), tool)
  if (!file.exists(bin))
    if (system2("gcc", c("-O2", "-o", bin, file.path(TOOLS, paste0(tool, ".c")), "-lm")) != 0) stop("gcc")
  f <- tempfile(); writeLines(if (is.null(input)) "" else as.character(input), f)
  out <- system2(bin, args, stdin = f, stdout = TRUE)
  if (!is.null(attr(out, "status"))) stop(tool, " failed")
  x <- strsplit(out, "[ \t]+"); nm <- vapply(x, `[`, "", 1)
  setNames(lapply(x, function(v) as.numeric(v[-1])), nm)
}
