# The installed files. The version is inserted into those that show it.
include(GNUInstallDirs)

foreach(page vqvec.1 vqvec-statement.7)
  configure_file(docs/man/${page}.in man/${page} @ONLY)
endforeach()
configure_file(src/app/version.cpp.in version.cpp @ONLY)
target_sources(vqvec PRIVATE ${PROJECT_BINARY_DIR}/version.cpp)

install(TARGETS vqvec RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES ${PROJECT_BINARY_DIR}/man/vqvec.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${PROJECT_BINARY_DIR}/man/vqvec-statement.7 DESTINATION ${CMAKE_INSTALL_MANDIR}/man7)

set(share ${CMAKE_INSTALL_DATADIR})
set(completions packaging/completions)
install(FILES ${completions}/vqvec.bash
  DESTINATION ${share}/bash-completion/completions RENAME vqvec)
install(FILES ${completions}/_vqvec DESTINATION ${share}/zsh/site-functions)
install(FILES ${completions}/vqvec.fish DESTINATION ${share}/fish/vendor_completions.d)

install(FILES README.md CONTRIBUTING.md SECURITY.md CHANGELOG.md LICENSE CITATION.cff
  DESTINATION ${CMAKE_INSTALL_DOCDIR} OPTIONAL)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} PATTERN man EXCLUDE)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} USE_SOURCE_PERMISSIONS)
