# Half the latest value of each charge, from a file that runs have appended to:
#
#   mawk -F= -f half.awk VALUES.kv
$1 ~ /^atoms\.[0-9]+\.charge\.resp$/ {
  value[substr($1, 7) + 0] = $2
}

END {
  for (i = 1; i in value; ++i) {
    printf "atoms.%d.charge.half=%.15g\n", i, value[i] * 0.5 > ".vorq.values.kv"
  }
}
