# Makes the pages of the public headers in FOLDER/html. Fails if Doxygen has to warn of anything.
# cmake -D FOLDER=DIR -P MakePages.cmake

cmake_minimum_required(VERSION 3.25)
cmake_path(GET CMAKE_CURRENT_LIST_DIR PARENT_PATH root)
include(${root}/marlet/PublicHeaders.cmake)
list(TRANSFORM MARLET_PUBLIC_HEADERS PREPEND "marlet/")
list(JOIN MARLET_PUBLIC_HEADERS " " headers)
cmake_path(ABSOLUTE_PATH FOLDER NORMALIZE)
file(MAKE_DIRECTORY ${FOLDER})
file(READ ${root}/docs/api/Doxyfile settings)
file(WRITE ${FOLDER}/Doxyfile "${settings}\nINPUT = docs/api/mainpage.md ${headers}\nOUTPUT_DIRECTORY = ${FOLDER}\n")
execute_process(COMMAND doxygen ${FOLDER}/Doxyfile WORKING_DIRECTORY ${root} RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "Doxygen warns of comments in the public headers")
endif()
