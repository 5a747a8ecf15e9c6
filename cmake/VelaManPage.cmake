# SPDX-FileCopyrightText: 2026 The Vela authors
# SPDX-License-Identifier: MIT

find_program(VELA_HELP2MAN help2man DOC "Creates the manual pages; without it there are none")
find_program(VELA_GZIP gzip REQUIRED)

# Creates the manual page of PROGRAM from its --help output, next to the program. SUMMARY is its one-line description.
# With a third argument, the page is installed in that component.
function(vela_man_page program summary)
  if(NOT VELA_HELP2MAN)
    return()
  endif()
  # If the program was built for another machine, the emulator runs it.
  string(JOIN " " run ${CMAKE_CROSSCOMPILING_EMULATOR} $<TARGET_FILE:${program}>)
  set(page ${CMAKE_CURRENT_BINARY_DIR}/${program}.1)
  add_custom_command(
    OUTPUT ${page}.gz
    COMMAND ${VELA_HELP2MAN} --no-info --name ${summary} --output ${page} ${run}
    COMMAND ${VELA_GZIP} -9nf ${page}
    DEPENDS ${program}
    COMMENT "Creating the manual page of ${program}"
    VERBATIM
  )
  add_custom_target(${program}_man_page ALL DEPENDS ${page}.gz)
  if(ARGC GREATER 2)
    install(FILES ${page}.gz DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT ${ARGV2})
  endif()
endfunction()
