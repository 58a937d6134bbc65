# Reads the tables that tovcore writes for scripts: source("read_tables.R"), or Rscript read_tables.R FILE...

# Rows behind the last banner and head of a batch table, ragged rows filled with NA. `head` is the number of lines
# between banner and rows: 2 for most tables, 1 for hw.sum, theta.sum, only_mismatch_sp.txt and those of pairs of samples.
read_batch_table <- function(file, head = 2) {
  lines <- readLines(file)
  start <- max(which(lines == "Tovenia batch run summary file\"")) + head
  rows <- lines[-seq_len(start)]
  if (length(rows) == 0) return(data.frame())
  width <- max(lengths(strsplit(rows, "\t", fixed = TRUE)))
  read.table(text = rows, sep = "\t", quote = "\"", comment.char = "", fill = TRUE, header = FALSE,
             col.names = paste0("V", seq_len(width)))
}

# A side table with a head, or the table of chosen statistics (whose lines end with a tab).
read_side_table <- function(file) {
  read.table(file, sep = "\t", quote = "", comment.char = "", header = TRUE, check.names = FALSE)
}

one_line_heads <- c("hw.sum", "theta.sum", "only_mismatch_sp.txt", "pairdist.sum", "FSTdist.sum", "VCompdist.sum",
                    "pairdiff.sum", "tau_uneq.sum", "coanst_c.sum", "slatkin.sum", "NM_value.sum")

for (file in commandArgs(trailingOnly = TRUE)) {
  batch <- any(readLines(file, n = 4) == "Tovenia batch run summary file\"")
  table <- if (batch) read_batch_table(file, if (basename(file) %in% one_line_heads) 1 else 2) else read_side_table(file)
  cat(file, ":", nrow(table), "rows,", ncol(table), "columns\n")
}
