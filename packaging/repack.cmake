# CPack runs this on the finished packages. Their files are in the order of the directory on disk;
# this sorts them by name, so that every build gives the same bytes.

# In KiB, with one KiB for each directory, since its real size depends on the disk.
function(set_installed_size files)
  file(GLOB_RECURSE entries LIST_DIRECTORIES true ${files}/usr/*)
  set(size 0)
  foreach(entry ${entries})
    if(IS_DIRECTORY ${entry})
      set(bytes 1024)
    else()
      file(SIZE ${entry} bytes)
    endif()
    math(EXPR size "${size} + (${bytes} + 1023) / 1024")
  endforeach()
  file(READ ${files}/DEBIAN/control control)
  string(REGEX REPLACE "Installed-Size: [0-9]+" "Installed-Size: ${size}" control "${control}")
  file(WRITE ${files}/DEBIAN/control "${control}")
endfunction()

foreach(package ${CPACK_PACKAGE_FILES})
  set(files ${package}.files)
  file(REMOVE_RECURSE ${files})
  file(MAKE_DIRECTORY ${files})
  if(package MATCHES "[.]deb$")
    execute_process(COMMAND dpkg-deb --raw-extract ${package} ${files} COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND sort -k 2 -o ${files}/DEBIAN/md5sums ${files}/DEBIAN/md5sums
      COMMAND_ERROR_IS_FATAL ANY)
    set_installed_size(${files})
    execute_process(COMMAND dpkg-deb --root-owner-group --build ${files} ${package}
      OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
  elseif(package MATCHES "[.]tar[.]gz$")
    execute_process(COMMAND tar -xf ${package} -C ${files} COMMAND_ERROR_IS_FATAL ANY)
    file(GLOB top RELATIVE ${files} ${files}/*)
    execute_process(
      COMMAND tar -c --sort=name --format=gnu --owner=root:0 --group=root:0
        --mtime=@$ENV{SOURCE_DATE_EPOCH} -C ${files} ${top}
      COMMAND gzip -9n
      OUTPUT_FILE ${package} COMMAND_ERROR_IS_FATAL ANY)
  elseif(package MATCHES "[.]zip$")
    execute_process(COMMAND unzip -q ${package} -d ${files} COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE ${package})
    file(GLOB_RECURSE entries RELATIVE ${files} ${files}/*)  # sorted
    execute_process(COMMAND zip -q -9 -X ${package} ${entries}
      WORKING_DIRECTORY ${files} COMMAND_ERROR_IS_FATAL ANY)
  endif()
  file(REMOVE_RECURSE ${files})
endforeach()
