# Checks that programs and libraries look for others in named folders alone: cmake -D FOLDER=DIR -P CheckRunPaths.cmake
# An empty or relative entry stands for the folder that a program is started in, where anybody may have put a library.

cmake_minimum_required(VERSION 3.25)
find_program(READELF readelf REQUIRED)
file(GLOB_RECURSE files LIST_DIRECTORIES false ${FOLDER}/bin/* ${FOLDER}/lib*/*)
set(count 0)

foreach(file IN LISTS files)
    execute_process(COMMAND ${READELF} -d ${file} OUTPUT_VARIABLE dynamic ERROR_QUIET)
    if(NOT dynamic MATCHES "\\(NEEDED\\)")
        continue()
    endif()
    math(EXPR count "${count} + 1")
    string(REGEX MATCH "\\(R(UN)?PATH\\)[^\n]*" path "${dynamic}")
    if(path STREQUAL "")
        continue()
    endif()
    string(REGEX REPLACE "^.*\\[(.*)\\].*$" "\\1" path "${path}")
    if(NOT path MATCHES "^(/|[$]ORIGIN)[^:]*(:(/|[$]ORIGIN)[^:]*)*$")
        message(SEND_ERROR "${file} looks for libraries in '${path}'")
    endif()
endforeach()

if(count EQUAL 0)
    message(FATAL_ERROR "There are no programs in ${FOLDER}")
endif()
