# Checks who includes whom: cmake -D ROOT=DIR -P CheckIncludes.cmake

cmake_minimum_required(VERSION 3.25)
include(${ROOT}/marlet/PublicHeaders.cmake)
list(TRANSFORM MARLET_PUBLIC_HEADERS PREPEND marlet/)

# The folders that a folder of the library may include, itself left out.
set(below_foundation)
set(below_platform foundation)
set(below_animation foundation)
set(below_plugins foundation animation)
set(below_masks foundation animation)
set(below_tracking foundation animation platform)
set(below_layers foundation animation plugins masks tracking project platform)
set(below_project foundation animation plugins masks tracking layers platform)
set(below_editor foundation animation plugins masks tracking layers project)
set(below_checks foundation animation plugins masks tracking layers project editor)
set(below_history foundation animation plugins masks tracking layers project editor)
set(below_operations foundation animation plugins masks tracking layers project editor history)
set(below_compare foundation animation plugins masks tracking layers project editor history operations)

set(below_exchange foundation animation plugins masks tracking layers project editor history operations compare)
set(below_recovery foundation animation plugins masks tracking layers project editor platform)

# Sources that must reach up, as "source folder".
set(reaching_up
    "marlet/plugins/EffectsHelperTransitions.cpp editor"
    "marlet/project/Project.cpp editor"
    "marlet/tracking/TrackingActiveObject.cpp layers"
    "marlet/tracking/TrackingActiveObject.cpp project"
    "marlet/tracking/TrackingFrame.cpp project"
    "marlet/tracking/TrackingRun.cpp project")

# Hosts that are built with sources of the library, as "source header".
set(inside_of_hosts
    "bench/TrackingBench.cpp marlet/tracking/FeatureMatch.h"
    "bench/TrackingBench.cpp marlet/tracking/TrackingFrame.h"
    "fuzz/MediaFuzzer.cpp marlet/platform/media/MediaResources.h"
    "fuzz/MediaFuzzer.cpp marlet/platform/media/contents/ContentsForm.h"
    "fuzz/StillFuzzer.cpp marlet/platform/images/ImageFile.h"
    "fuzz/XmlFuzzer.cpp marlet/foundation/xml/WellFormed.h"
    "fuzz/XmlFuzzer.cpp marlet/foundation/xml/XmlReader.h")

# Third-party headers of the interface, as "header third-party-header".
set(third_party_in_public
    "marlet/animation/PropertyValue.h boost/variant/get.hpp"
    "marlet/animation/PropertyValue.h boost/variant/variant.hpp")

set(faults)

function(check_library_file file folder)
    foreach(included IN LISTS includes)
        if(NOT included MATCHES "^marlet/([a-z]+)/")
            continue()
        endif()
        set(other ${CMAKE_MATCH_1})
        if(NOT other STREQUAL folder AND NOT other IN_LIST below_${folder}
           AND NOT "${file} ${other}" IN_LIST reaching_up)
            list(APPEND faults "${file} includes ${included}: ${folder} must not know ${other}")
        endif()
    endforeach()
    set(faults "${faults}" PARENT_SCOPE)
endfunction()

# A public header includes public headers, the standard library and what the interface asks for.
function(check_public_header file)
    foreach(included IN LISTS includes)
        if(NOT included IN_LIST MARLET_PUBLIC_HEADERS AND NOT included MATCHES "^[a-z_]+$"
           AND NOT "${file} ${included}" IN_LIST third_party_in_public)
            list(APPEND faults "${file} includes ${included}, which hosts do not have")
        endif()
    endforeach()
    set(faults "${faults}" PARENT_SCOPE)
endfunction()

# What is exported is there to be included.
function(check_other_header file)
    file(STRINGS ${ROOT}/${file} exports REGEX "MARLET_EXPORT")
    if(exports)
        set(faults "${faults};${file} exports something and is not on the list of public headers" PARENT_SCOPE)
    endif()
endfunction()

function(check_host_file file)
    foreach(included IN LISTS includes)
        if(included MATCHES "^marlet/" AND NOT included IN_LIST MARLET_PUBLIC_HEADERS
           AND NOT "${file} ${included}" IN_LIST inside_of_hosts)
            list(APPEND faults "${file} includes ${included}, which is not public")
        endif()
    endforeach()
    set(faults "${faults}" PARENT_SCOPE)
endfunction()

file(GLOB_RECURSE files RELATIVE ${ROOT} LIST_DIRECTORIES false
    ${ROOT}/marlet/*.h ${ROOT}/marlet/*.cpp
    ${ROOT}/apps/*.h ${ROOT}/apps/*.cpp ${ROOT}/bench/*.h ${ROOT}/bench/*.cpp
    ${ROOT}/examples/*.h ${ROOT}/examples/*.cpp ${ROOT}/fuzz/*.h ${ROOT}/fuzz/*.cpp
    ${ROOT}/python/*.h ${ROOT}/python/*.cpp)
foreach(file IN LISTS files)
    file(STRINGS ${ROOT}/${file} includes REGEX "^#include [<\"]")
    list(TRANSFORM includes REPLACE "^#include [<\"]([^>\"]+).*" "\\1")
    if(file MATCHES "^marlet/([a-z]+)/")
        check_library_file(${file} ${CMAKE_MATCH_1})
        if(file IN_LIST MARLET_PUBLIC_HEADERS)
            check_public_header(${file})
        elseif(file MATCHES "\\.h$")
            check_other_header(${file})
        endif()
    else()
        check_host_file(${file})
    endif()
endforeach()

if(faults)
    list(JOIN faults "\n" faults)
    message(FATAL_ERROR "${faults}")
endif()
list(LENGTH files count)
if(count EQUAL 0)
    message(FATAL_ERROR "There are no sources in ${ROOT}")
endif()
