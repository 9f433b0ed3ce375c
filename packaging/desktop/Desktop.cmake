# The desktop's files: entry, types, description, icons. Desktops that take no drawings get pictures of the usual sizes,
# made from them where the tool is there; the smallest ones have a drawing of their own.
install(FILES desktop/zelvanor.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES desktop/zelvanor.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages)
install(FILES desktop/zelvanor.metainfo.xml DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo
        RENAME invalid.zelvanor.zelvanor.metainfo.xml)

set(ICONS ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
set(DRAWN_SMALL 16 22 24)
set(DRAWN_LARGE 32 48 64 128 256)
find_program(RSVG_CONVERT rsvg-convert)
if(NOT RSVG_CONVERT)
  message(STATUS "rsvg-convert is missing: the icons are installed as drawings only")
endif()

# One icon under its name in a group of the icon theme, from a drawing and one for small sizes.
function(install_icon group name drawing small)
  install(FILES ${drawing} DESTINATION ${ICONS}/scalable/${group} RENAME ${name}.svg)
  if(NOT RSVG_CONVERT)
    return()
  endif()
  foreach(size ${DRAWN_SMALL} ${DRAWN_LARGE})
    set(source ${drawing})
    if(size IN_LIST DRAWN_SMALL)
      set(source ${small})
    endif()
    set(picture ${CMAKE_CURRENT_BINARY_DIR}/icons/${size}/${name}.png)
    add_custom_command(OUTPUT ${picture} DEPENDS ${source}
      COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_CURRENT_BINARY_DIR}/icons/${size}
      COMMAND ${RSVG_CONVERT} -w ${size} -h ${size} -o ${picture} ${source})
    set_property(GLOBAL APPEND PROPERTY ZELVANOR_PICTURES ${picture})
    install(FILES ${picture} DESTINATION ${ICONS}/${size}x${size}/${group})
  endforeach()
endfunction()

set(HERE ${CMAKE_CURRENT_SOURCE_DIR}/icons)
install_icon(apps zelvanor ${PROJECT_SOURCE_DIR}/src/qt/icons/zelvanor.svg ${HERE}/zelvanor-16.svg)
install_icon(mimetypes application-x-zelvanor-document ${HERE}/document.svg ${HERE}/document-16.svg)
get_property(PICTURES GLOBAL PROPERTY ZELVANOR_PICTURES)
add_custom_target(icons ALL DEPENDS ${PICTURES})
