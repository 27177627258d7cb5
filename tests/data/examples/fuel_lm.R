# Reference coefficients for tests/examples/demo_test.cpp: R's least-squares fit of the
# demo's data set, lm(fuel ~ engine + weight + age + drive, weights = count), drive coded
# against its first category in the file (front). The standard errors, t values and
# p-values treat count as a frequency weight, so they come from the same model fitted to
# the data with each row repeated count times; the coefficients of both fits must agree.
# Run from this folder: Rscript fuel_lm.R > fuel_lm.csv
d <- read.csv("../../../examples/data/fuel.csv", stringsAsFactors = FALSE)
d <- d[!is.na(d$count) & d$count > 0 & !is.na(d$fuel), ]
d$drive <- factor(d$drive, levels = unique(d$drive))
weighted <- lm(fuel ~ engine + weight + age + drive, data = d, weights = count)
expanded <- lm(fuel ~ engine + weight + age + drive, data = d[rep(seq_len(nrow(d)), d$count), ])
stopifnot(isTRUE(all.equal(coef(weighted), coef(expanded), tolerance = 1e-13)))
table <- summary(expanded)$coefficients
cat(sprintf("# made by fuel_lm.R, %s; do not edit\n", R.version.string))
cat("# term (0 intercept, 1 engine, 2 weight, 3 age, 4 drive=rear, 5 drive=all),",
    "estimate,stdError,tValue,df,sig\n", sep = "")
stopifnot(identical(rownames(table), c("(Intercept)", "engine", "weight", "age",
                                       "driverear", "driveall")))
for (i in seq_len(nrow(table))) {
  cat(sprintf("%d,%.17g,%.17g,%.17g,%d,%.17g\n", i - 1L, coef(weighted)[i], table[i, 2],
              table[i, 3], expanded$df.residual, table[i, 4]))
}
