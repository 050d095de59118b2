# The installed files. The version is inserted into those that show it.
include(GNUInstallDirs)

set(companions vqvec-check vqvec-draw vqvec-import vqvec-weights)

configure_file(src/app/version.cpp.in version.cpp @ONLY)
target_sources(vqvec PRIVATE ${PROJECT_BINARY_DIR}/version.cpp)

install(TARGETS vqvec RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
foreach(command ${companions})
  install(PROGRAMS tools/${command} DESTINATION ${CMAKE_INSTALL_BINDIR})
  if(WIN32)
    install(FILES packaging/windows/companion.cmd
      DESTINATION ${CMAKE_INSTALL_BINDIR} RENAME ${command}.cmd)
  endif()
endforeach()

install(FILES README.md CONTRIBUTING.md SECURITY.md CHANGELOG.md LICENSE CITATION.cff
  DESTINATION ${CMAKE_INSTALL_DOCDIR} OPTIONAL)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} PATTERN man EXCLUDE
  PATTERN try EXCLUDE)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} USE_SOURCE_PERMISSIONS)

if(WIN32)
  return() # no manual pages, completions and modules there
endif()

foreach(page vqvec ${companions})
  configure_file(docs/man/${page}.1.in man/${page}.1 @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/man/${page}.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
endforeach()
configure_file(docs/man/vqvec-statement.7.in man/vqvec-statement.7 @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/man/vqvec-statement.7 DESTINATION ${CMAKE_INSTALL_MANDIR}/man7)

set(share ${CMAKE_INSTALL_DATADIR})
set(completions packaging/completions)
install(FILES ${completions}/vqvec.bash
  DESTINATION ${share}/bash-completion/completions RENAME vqvec)
install(FILES ${completions}/_vqvec ${completions}/_vqvec_import ${completions}/_vqvec_tools
  DESTINATION ${share}/zsh/site-functions)
install(FILES ${completions}/vqvec.fish DESTINATION ${share}/fish/vendor_completions.d)
foreach(command ${companions})
  install(FILES ${completions}/${command}.fish DESTINATION ${share}/fish/vendor_completions.d)
endforeach()
foreach(command vqvec-check vqvec-draw vqvec-weights)
  install(FILES ${completions}/vqvec-tools.bash
    DESTINATION ${share}/bash-completion/completions RENAME ${command})
endforeach()
install(FILES ${completions}/vqvec-import.bash
  DESTINATION ${share}/bash-completion/completions RENAME vqvec-import)

configure_file(packaging/modulefile.in packaging/modulefile @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/packaging/modulefile
  DESTINATION ${share}/modulefiles/vqvec RENAME ${PROJECT_VERSION})
