# Run by CPack on the tree that goes into the package: what a Debian package has beyond an installation by hand.
set(share ${CPACK_TEMPORARY_DIRECTORY}/usr/share)
file(COPY ${CPACK_ZELVANOR_DEB_FILES}/copyright ${CPACK_ZELVANOR_DEB_FILES}/changelog
     DESTINATION ${share}/doc/zelvanor)
file(GLOB pages ${share}/man/man1/*.1)
execute_process(COMMAND gzip -9nf ${pages} ${share}/doc/zelvanor/changelog COMMAND_ERROR_IS_FATAL ANY)
