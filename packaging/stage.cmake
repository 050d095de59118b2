# CPack runs this on the files of a package before it builds the package. It adds what a package
# needs and an installation from source does not, and makes every build give the same bytes.
set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY})

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

if(CPACK_GENERATOR MATCHES "DEB|RPM")
  set(share ${root}/usr/share)
  set(doc ${share}/doc/vqvec)
  file(REMOVE_RECURSE ${share}/modulefiles)  # the program is in everyone's PATH
  file(GLOB compressed ${share}/man/man*/*)
endif()
if(CPACK_GENERATOR STREQUAL "DEB")
  file(COPY_FILE ${CPACK_VQVEC_PACKAGING}/copyright ${doc}/copyright)
  file(REMOVE ${doc}/LICENSE)  # the copyright file contains it
  file(COPY_FILE ${CPACK_VQVEC_CHANGELOG} ${doc}/changelog)
  list(APPEND compressed ${doc}/changelog)
  file(MAKE_DIRECTORY ${share}/lintian/overrides)
  file(COPY_FILE ${CPACK_VQVEC_PACKAGING}/lintian-overrides ${share}/lintian/overrides/vqvec)
  file(RENAME ${share}/zsh/site-functions ${share}/zsh/vendor-completions)
endif()
if(compressed)
  run(gzip -9n ${compressed})
endif()

file(GLOB program ${root}/usr/bin/vqvec ${root}/bin/vqvec ${root}/bin/vqvec.exe)
run(${CPACK_VQVEC_STRIP} --remove-section=.comment ${program})
run(chmod -R u=rwX,go=rX ${root})
run(find ${root} -exec touch --no-dereference --date=@$ENV{SOURCE_DATE_EPOCH} {} +)
