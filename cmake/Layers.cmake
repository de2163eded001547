# One library a folder. What a library links is what its folder may include, and nothing else:
# tools/check_layers holds the same table against the sources.
function(layer name directory)
    cmake_parse_arguments(LAYER "" "" "LINKS;EXCLUDE;SOURCES" ${ARGN})
    if(LAYER_SOURCES)
        set(sources ${LAYER_SOURCES})
    else()
        file(GLOB sources CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/${directory}/*.cpp)
    endif()
    foreach(excluded ${LAYER_EXCLUDE})
        list(REMOVE_ITEM sources ${PROJECT_SOURCE_DIR}/${directory}/${excluded})
    endforeach()
    add_library(${name} STATIC ${sources})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR})
    target_link_libraries(${name} PUBLIC ${LAYER_LINKS})
endfunction()

layer(kits_support kits/support)
layer(kits_kernel kits/kernel LINKS kits_support Threads::Threads)
layer(host_loop host/loop LINKS kits_support PkgConfig::GLIB Threads::Threads)
layer(host_files host/files LINKS host_loop)
layer(host_session host/session LINKS host_loop)
layer(host_draw host/draw LINKS kits_support PkgConfig::CAIRO PkgConfig::PANGO Threads::Threads)
layer(host_x11 host/x11 LINKS host_loop host_draw PkgConfig::XCB PkgConfig::XKB)
# The library is loaded only when an input method is wanted.
target_include_directories(host_x11 PRIVATE ${IMDKIT_INCLUDE_DIRS})
layer(kits_app kits/app LINKS kits_kernel host_session host_files nlohmann_json::nlohmann_json)
layer(kits_storage kits/storage LINKS kits_app)
layer(kits_interface kits/interface LINKS kits_storage host_x11 host_draw)
layer(quillbar_base quillbar/app LINKS kits_interface
    SOURCES ${PROJECT_SOURCE_DIR}/quillbar/app/Settings.cpp
            ${PROJECT_SOURCE_DIR}/quillbar/app/SettingsFile.cpp
            ${PROJECT_SOURCE_DIR}/quillbar/app/Commands.cpp
            ${PROJECT_SOURCE_DIR}/quillbar/app/Trace.cpp)
layer(quillbar_widgets quillbar/bar/widgets LINKS quillbar_base)
layer(quillbar_store quillbar/store LINKS quillbar_widgets)
layer(quillbar_hotkey quillbar/hotkey LINKS quillbar_base)
layer(quillbar_bubbles quillbar/bubbles LINKS quillbar_base)
# The bar window and the Add Bookmark window know each other.
layer(quillbar_addbookmark quillbar/addbookmark LINKS quillbar_store)
layer(quillbar_bar quillbar/bar LINKS quillbar_addbookmark quillbar_hotkey quillbar_bubbles)
target_link_libraries(quillbar_addbookmark PUBLIC quillbar_bar)
layer(quillbar_about quillbar/about LINKS quillbar_base)
layer(quillbar_app quillbar/app LINKS quillbar_bar quillbar_about EXCLUDE Settings.cpp SettingsFile.cpp Commands.cpp Trace.cpp main.cpp)
