# Lets the desktop know of the menu entry and the file type, after "cmake --install". A package does this where it is
# installed.
if("$ENV{DESTDIR}" STREQUAL "")
  foreach(database "update-mime-database share/mime" "update-desktop-database share/applications")
    separate_arguments(database)
    list(GET database 0 tool)
    list(GET database 1 folder)
    find_program(found_${tool} ${tool})
    if(found_${tool})
      execute_process(COMMAND ${found_${tool}} "${CMAKE_INSTALL_PREFIX}/${folder}" OUTPUT_QUIET ERROR_QUIET)
    endif()
  endforeach()
endif()
