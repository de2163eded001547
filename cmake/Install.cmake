# Where the programs' parts go on a desktop. What names the version is filled in here.
include(GNUInstallDirs)

option(INSTALL_STRIPPED "Install the program without debugging information" ON)
set(ZSH_COMPLETIONS_DIR ${CMAKE_INSTALL_DATADIR}/zsh/site-functions CACHE STRING
    "Where completions for zsh go")
set(packaging ${PROJECT_SOURCE_DIR}/packaging)
set(filled_in ${PROJECT_BINARY_DIR}/packaging)

if(INSTALL_STRIPPED)
    install(CODE "set(CMAKE_INSTALL_DO_STRIP TRUE)")
endif()
install(TARGETS quillbar quillbarctl)
install(FILES ${packaging}/quillbar.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)

configure_file(${packaging}/quillbar.metainfo.xml.in
    ${filled_in}/example.quillbar.quillbar.metainfo.xml @ONLY)
install(FILES ${filled_in}/example.quillbar.quillbar.metainfo.xml
    DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)

foreach(page quillbar.1 quillbarctl.1 quillbar.5)
    configure_file(${packaging}/man/${page}.in ${filled_in}/${page} @ONLY)
    string(REGEX REPLACE ".*\\." "" section ${page})
    install(FILES ${filled_in}/${page} DESTINATION ${CMAKE_INSTALL_MANDIR}/man${section})
endforeach()

foreach(program quillbar quillbarctl)
    install(FILES ${packaging}/completions/${program}.bash RENAME ${program}
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
    install(FILES ${packaging}/completions/_${program} DESTINATION ${ZSH_COMPLETIONS_DIR})
    install(FILES ${packaging}/completions/${program}.fish
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endforeach()

find_program(RSVG_CONVERT rsvg-convert REQUIRED)
set(icons ${CMAKE_INSTALL_DATADIR}/icons/hicolor)
install(FILES ${packaging}/quillbar.svg DESTINATION ${icons}/scalable/apps)
foreach(size 16 22 24 32 48 64 128 256)
    set(picture ${filled_in}/quillbar-${size}.png)
    add_custom_command(OUTPUT ${picture} DEPENDS ${packaging}/quillbar.svg VERBATIM
        COMMAND ${RSVG_CONVERT} -w ${size} -h ${size} -o ${picture} ${packaging}/quillbar.svg)
    list(APPEND pictures ${picture})
    install(FILES ${picture} RENAME quillbar.png DESTINATION ${icons}/${size}x${size}/apps)
endforeach()
add_custom_target(icons ALL DEPENDS ${pictures})
