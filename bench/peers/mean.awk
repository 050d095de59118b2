# The mean of two tasks' charges, as key-value lines and as an extended-XYZ file:
#
#   mawk -f mean.awk [-v shifts_to_total=1] FS== A.kv B.kv FS=' ' A.xyz B.xyz
FNR == 1 {
  ++file
}

FS == "=" && $1 ~ /^atoms\.[0-9]+\.charge\.resp$/ {
  sum[substr($1, 7) + 0] += $2
  next
}
FS == "=" && $1 == "charge" && file == 1 {
  total = $2
}

FS == " " && FNR > 2 && file == 3 {
  symbol[FNR - 2] = $1
  position[FNR - 2] = sprintf("%.10f %.10f %.10f", $2, $3, $4)
  atoms = FNR - 2
}
FS == " " && FNR > 2 && file == 4 && symbol[FNR - 2] != $1 {
  print "other atoms" > "/dev/stderr"
  failed = 1
  exit 1
}

END {
  if (failed) exit 1
  for (i = 1; i <= atoms; ++i) {
    mean[i] = sum[i] / 2
    now += mean[i]
  }
  shift = shifts_to_total ? (total - now) / atoms : 0
  print atoms > "mean.extxyz"
  print "Properties=species:S:1:pos:R:3:charge.mean:R:1 generated_by=vqvec" > "mean.extxyz"
  for (i = 1; i <= atoms; ++i) {
    value = sprintf("%.15g", mean[i] + shift)
    print "atoms." i ".charge.mean=" value > ".vorq.values.kv"
    print symbol[i], position[i], value > "mean.extxyz"
  }
}
