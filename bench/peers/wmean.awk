# The mean of the charges of many tasks, each with its own weight:
#
#   mawk -f wmean.awk FS== RUN.kv... FS=' ' RUN.xyz...
FS == "=" && $1 == "weight" {
  weight = $2
  total += weight
}
FS == "=" && $1 ~ /^atoms\.[0-9]+\.charge\.resp$/ {
  sum[substr($1, 7) + 0] += $2 * weight
}

FS == " " && FNR > 2 {
  if (!(FNR in symbol)) {
    symbol[FNR] = $1
    ++atoms
  } else if (symbol[FNR] != $1) {
    print "other atoms" > "/dev/stderr"
    failed = 1
    exit 1
  }
}

END {
  if (failed) exit 1
  for (i = 1; i <= atoms; ++i) {
    printf "atoms.%d.charge.mean=%.15g\n", i, sum[i] / total > ".vorq.values.kv"
  }
}
