# libformwork.a, on request: all objects of ours as one, in which the names of the C interface alone are global, so that neither
# ours nor those of a program with a class of the same name get in each other's way. Link-time data is dropped: clang, lld and
# other versions of gcc can't read it.

# The libraries of the system that a program with the archive is linked with.
set(FORMWORK_STATIC_NEEDS tinyxml z nettle)
if(LIBDEFLATE_LIBRARY)
    list(APPEND FORMWORK_STATIC_NEEDS deflate)
endif()
if(FORMWORK_FONT_PROGRAMS)
    list(APPEND FORMWORK_STATIC_NEEDS fontconfig freetype)
endif()
list(APPEND FORMWORK_STATIC_NEEDS fribidi)
if(FORMWORK_PROCESSES)
    list(APPEND FORMWORK_STATIC_NEEDS mujs)
endif()
list(APPEND FORMWORK_STATIC_NEEDS stdc++ m)
list(TRANSFORM FORMWORK_STATIC_NEEDS PREPEND "-l" OUTPUT_VARIABLE FORMWORK_PC_NEEDS)
list(JOIN FORMWORK_PC_NEEDS " " FORMWORK_PC_NEEDS)

if(FORMWORK_STATIC_LIBRARY)
    set(objects)
    foreach(room IN LISTS FORMWORK_ROOMS)
        string(REPLACE "/" "_" id formwork_room_${room})
        if(TARGET ${id} AND NOT room MATCHES "^render/.")
            list(APPEND objects $<TARGET_OBJECTS:${id}>)
        endif()
    endforeach()
    add_custom_command(OUTPUT libformwork.a
        COMMAND ${CMAKE_LINKER} -r --force-group-allocation -o formwork.o ${objects}
        COMMAND ${CMAKE_OBJCOPY} --localize-hidden --wildcard --remove-section=.gnu.lto_* --remove-section=.gnu.debuglto_*
            --strip-debug formwork.o
        COMMAND ${CMAKE_COMMAND} -E rm -f libformwork.a
        COMMAND ${CMAKE_AR} qcD libformwork.a formwork.o
        COMMAND ${CMAKE_RANLIB} -D libformwork.a
        DEPENDS ${objects} COMMAND_EXPAND_LISTS VERBATIM)
    add_custom_target(formwork_archive ALL DEPENDS libformwork.a)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/libformwork.a DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development)
endif()
