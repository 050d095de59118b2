# CPack runs this on the files of a package before it builds the package. It adds what a package
# needs and an installation from source does not, and makes every build give the same bytes.
set(root ${CPACK_TEMPORARY_INSTALL_DIRECTORY})

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

if(CPACK_GENERATOR STREQUAL "DEB")
  set(share ${root}/usr/share)
  set(doc ${share}/doc/vqvec)
  file(COPY_FILE ${CPACK_VQVEC_PACKAGING}/copyright ${doc}/copyright)
  file(REMOVE ${doc}/LICENSE)  # the copyright file contains it
  file(COPY_FILE ${CPACK_VQVEC_CHANGELOG} ${doc}/changelog)
  file(MAKE_DIRECTORY ${share}/lintian/overrides ${share}/zsh)
  file(COPY_FILE ${CPACK_VQVEC_PACKAGING}/lintian-overrides ${share}/lintian/overrides/vqvec)
  file(RENAME ${share}/zsh/site-functions ${share}/zsh/vendor-completions)
  file(GLOB manual_pages ${share}/man/man*/*)
  run(gzip -9n ${doc}/changelog ${manual_pages})
endif()

file(GLOB program ${root}/usr/bin/vqvec ${root}/bin/vqvec)
run(strip --remove-section=.comment ${program})
run(chmod -R u=rwX,go=rX ${root})
run(find ${root} -exec touch --no-dereference --date=@$ENV{SOURCE_DATE_EPOCH} {} +)
