# Run by CPack on the tree that goes into the package: what a Debian package has beyond an installation by hand.
set(share ${CPACK_TEMPORARY_DIRECTORY}/usr/share)
foreach(place ${CPACK_ZELVANOR_DEB_FILES}/changelog ${share}/metainfo/invalid.zelvanor.zelvanor.metainfo.xml)
  file(STRINGS ${place} release REGEX "zelvanor \\(${CPACK_PACKAGE_VERSION}\\)|release version=\"${CPACK_PACKAGE_VERSION}\"")
  if(NOT release)
    message(FATAL_ERROR "${place} knows no version ${CPACK_PACKAGE_VERSION}")
  endif()
endforeach()
file(COPY ${CPACK_ZELVANOR_DEB_FILES}/copyright ${CPACK_ZELVANOR_DEB_FILES}/changelog
     DESTINATION ${share}/doc/zelvanor)
file(GLOB pages ${share}/man/man1/*.1)
execute_process(COMMAND gzip -9nf ${pages} ${share}/doc/zelvanor/changelog COMMAND_ERROR_IS_FATAL ANY)
