# What the program needs on systems that are not like Linux.

# As much stack as elsewhere: expressions may be nested 1,000 deep.
set(stack_size 8388608)

if(WIN32)
  enable_language(RC)
  target_sources(vqvec PRIVATE packaging/windows/vqvec.rc)
  target_link_options(vqvec PRIVATE -Wl,--stack,${stack_size})
endif()

if(EMSCRIPTEN)
  # The same program twice: for Node.js with the files of the machine, and for a page with files in
  # memory, which starts it by callMain(). All is in one file: neither has to find another one.
  add_executable(vqvec_web src/app/main.cpp)
  target_link_libraries(vqvec_web PRIVATE vqvec_core)
  foreach(program vqvec vqvec_web)
    target_link_options(${program} PRIVATE
      -sSINGLE_FILE -sALLOW_MEMORY_GROWTH -sEXIT_RUNTIME -sTOTAL_STACK=${stack_size})
  endforeach()
  target_link_options(vqvec PRIVATE -sENVIRONMENT=node -sNODERAWFS
    --pre-js ${PROJECT_SOURCE_DIR}/src/platform/node_environment.js)
  target_link_options(vqvec_web PRIVATE
    -sENVIRONMENT=web -sMODULARIZE -sEXPORT_NAME=createVqvec -sINVOKE_RUN=0 -sFORCE_FILESYSTEM
    -sEXPORTED_RUNTIME_METHODS=FS,callMain)
endif()
