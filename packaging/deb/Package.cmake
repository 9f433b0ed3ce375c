# The Debian package: cmake --build BUILD --target package.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME zelvanor)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "Zelvanor developers <zelvanor@localhost.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "predict and inspect the NMR spectra of molecules")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Zelvanor takes a molecule from a file of any kind or from the Morvantis
modelling program, predicts its shielding constants, shielding tensors and
spin-spin couplings by a model learned from measured spectra, and simulates
the spectrum of the spin system, exactly or with a told error. It shows
spectrum, tables, plots and the molecule in three dimensions, and lays a
measured spectrum beside.
.
The package has the window (zelvanor), the same program for scripts without
a display (zelvanor-batch), the prediction of many spectra (zelvanor-
predict), the reader of molecule files (zelvanor-convert), the backend of
the calculations, a stand-in for the modelling program (morvantis-sim), the
manual and examples.")
# The libraries are found out from the programs; the drawings of the icons and the text need more than these.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libqt6svg6, fonts-dejavu-core | fonts-liberation | fonts-freefont-ttf")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "nwchem-mpich, xtb")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "default-dbus-session-bus | dbus-session-bus, qt6-wayland, openbabel")
execute_process(COMMAND dpkg --print-architecture OUTPUT_VARIABLE ARCHITECTURE OUTPUT_STRIP_TRAILING_WHITESPACE
                ERROR_QUIET RESULT_VARIABLE NO_DPKG)
if(NO_DPKG)
  set(ARCHITECTURE ${CMAKE_SYSTEM_PROCESSOR})
endif()
set(CPACK_DEBIAN_FILE_NAME zelvanor_${PROJECT_VERSION}_${ARCHITECTURE}.deb)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/Finish.cmake)
set(CPACK_ZELVANOR_DEB_FILES ${CMAKE_CURRENT_LIST_DIR})
include(CPack)
