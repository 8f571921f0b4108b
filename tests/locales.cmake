# The tests once more where a host has set another locale: a decimal comma and one-byte characters, and a language in
# which "i" is not the small letter of "I".
find_program(LOCALEDEF localedef REQUIRED)
set(locale_dir ${CMAKE_CURRENT_BINARY_DIR}/locale)
file(MAKE_DIRECTORY ${locale_dir})

foreach(locale IN ITEMS de_DE.ISO-8859-1 tr_TR.ISO-8859-9)
  string(REGEX MATCH "^([^.]+)\\.(.+)$" unused ${locale})
  if(NOT EXISTS ${locale_dir}/${locale}/LC_NUMERIC)
    execute_process(COMMAND ${LOCALEDEF} -i ${CMAKE_MATCH_1} -f ${CMAKE_MATCH_2} ${locale_dir}/${locale}
      OUTPUT_QUIET ERROR_VARIABLE error)
    if(NOT EXISTS ${locale_dir}/${locale}/LC_NUMERIC)
      message(FATAL_ERROR "Cannot make the locale ${locale} (scripts/install-deps.sh installs what that needs): ${error}")
    endif()
  endif()
  foreach(program IN ITEMS library_tests client_test profile_file_test)
    add_test(NAME ${program}.${locale} COMMAND ${program})
    set_tests_properties(${program}.${locale} PROPERTIES ENVIRONMENT "LOCPATH=${locale_dir};LC_ALL=${locale}")
  endforeach()
endforeach()
