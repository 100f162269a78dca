# What `cmake --install` puts where, and what a program needs to find it:
#
#   bin/                     marlo-export
#   lib/                     the shared libraries
#   lib/cmake/MarloExport/   find_package(MarloExport)
#   lib/pkgconfig/           marloexport.pc
#   include/marlo/           headers, included as in the sources ("Host/Anm.h")
#   share/marlo/translations/
#
# Nothing holds the prefix: the tree can be moved as a whole.

include(CMakePackageConfigHelpers)

set(marlo_include_dir ${CMAKE_INSTALL_INCLUDEDIR}/marlo)
set(marlo_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/MarloExport)
set(marlo_pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

# The private static libraries and marlo_flags stay out: they are linked into the
# shared ones and no header shows them.
set(marlo_targets marloexport marlo_host_api marlo_mtx marlo_kestrelia marlo_usd)
if(TARGET marlohost)
    list(APPEND marlo_targets marlohost)
endif()
install(TARGETS ${marlo_targets} EXPORT MarloExportTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
if(TARGET marlo-export)
    install(TARGETS marlo-export RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
endif()

# Headers keep their folder, so that they find one another as they do in the sources.
# Those in a room inside a folder of src/ are private to it.
set(marlo_header_dirs platform/mtx platform/kestrelia)
if(NOT pxr_FOUND)
    list(APPEND marlo_header_dirs platform/usd)
endif()
if(TARGET marlohost)
    list(APPEND marlo_header_dirs host/marlohost)
endif()
file(GLOB marlo_rooms_inside LIST_DIRECTORIES true RELATIVE ${CMAKE_SOURCE_DIR}/src ${CMAKE_SOURCE_DIR}/src/*/*)
set(marlo_private_rooms)
foreach(room IN LISTS marlo_rooms_inside)
    if(IS_DIRECTORY ${CMAKE_SOURCE_DIR}/src/${room})
        list(APPEND marlo_private_rooms PATTERN ${room} EXCLUDE)
    endif()
endforeach()
install(DIRECTORY src/ ${marlo_header_dirs} DESTINATION ${marlo_include_dir}
    FILES_MATCHING PATTERN "*.h" ${marlo_private_rooms})

install(EXPORT MarloExportTargets NAMESPACE MarloExport:: DESTINATION ${marlo_cmake_dir})
configure_package_config_file(cmake/MarloExportConfig.cmake.in ${CMAKE_BINARY_DIR}/cmake/MarloExportConfig.cmake
    INSTALL_DESTINATION ${marlo_cmake_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${CMAKE_BINARY_DIR}/cmake/MarloExportConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
    ${CMAKE_BINARY_DIR}/cmake/MarloExportConfig.cmake
    ${CMAKE_BINARY_DIR}/cmake/MarloExportConfigVersion.cmake
    DESTINATION ${marlo_cmake_dir})

# pkg-config knows where the .pc file lies; everything else is told from there.
file(RELATIVE_PATH marlo_pc_prefix ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" marlo_pc_prefix "${marlo_pc_prefix}")
list(TRANSFORM marlo_targets PREPEND "-l" OUTPUT_VARIABLE marlo_pc_libs)
list(REMOVE_ITEM marlo_pc_libs -lmarlo_host_api)
if(pxr_FOUND)
    list(REMOVE_ITEM marlo_pc_libs -lmarlo_usd)
endif()
if(MARLO_HOST_LIBRARY AND NOT TARGET ${MARLO_HOST_LIBRARY})
    list(APPEND marlo_pc_libs ${MARLO_HOST_LIBRARY})
endif()
list(JOIN marlo_pc_libs " " marlo_pc_libs)
configure_file(cmake/marloexport.pc.in ${CMAKE_BINARY_DIR}/cmake/marloexport.pc @ONLY)
install(FILES ${CMAKE_BINARY_DIR}/cmake/marloexport.pc DESTINATION ${marlo_pkgconfig_dir})
