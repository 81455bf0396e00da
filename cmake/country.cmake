# country.txt: country names by top-level domain, for the tracer's and the whois window's Country
# column. Built from the ISO 3166 list of Debian's iso-codes package, plus the domains that are no
# ISO code. Included from a CMakeLists it adds the build step; run with -P it writes the file.

if(CMAKE_SCRIPT_MODE_FILE)
  file(READ "${ISO_JSON}" json)
  string(JSON count LENGTH "${json}" "3166-1")
  math(EXPR last "${count} - 1")
  set(lines "")
  foreach(i RANGE ${last})
    string(JSON code GET "${json}" "3166-1" ${i} alpha_2)
    # The common name where ISO has one: "South Korea" rather than "Korea, Republic of".
    string(JSON name ERROR_VARIABLE no_common_name GET "${json}" "3166-1" ${i} common_name)
    if(no_common_name)
      string(JSON name GET "${json}" "3166-1" ${i} name)
    endif()
    string(APPEND lines "${code};${name}\n")
  endforeach()
  string(APPEND lines "UK;United Kingdom\nEU;European Union\nSU;Soviet Union\n")
  file(WRITE "${OUTPUT}.part" "${lines}")
  file(RENAME "${OUTPUT}.part" "${OUTPUT}")
  return()
endif()

set(SONDAR_ISO_3166_JSON /usr/share/iso-codes/json/iso_3166-1.json
  CACHE FILEPATH "ISO 3166-1 list of the iso-codes package")
# Beside the executable, where the program looks for it.
set(SONDAR_COUNTRY_TXT ${CMAKE_BINARY_DIR}/app/country.txt CACHE INTERNAL "country.txt beside the executable")

add_custom_command(OUTPUT ${SONDAR_COUNTRY_TXT}
  COMMAND ${CMAKE_COMMAND} -DISO_JSON=${SONDAR_ISO_3166_JSON} -DOUTPUT=${SONDAR_COUNTRY_TXT}
          -P ${CMAKE_CURRENT_LIST_FILE}
  DEPENDS ${SONDAR_ISO_3166_JSON} ${CMAKE_CURRENT_LIST_FILE}
  COMMENT "Generating country.txt from ISO 3166"
  VERBATIM)
add_custom_target(sondar_country_txt ALL DEPENDS ${SONDAR_COUNTRY_TXT})
# Whatever links the lookup gets the file built too.
add_dependencies(sondar_whois sondar_country_txt)
include(GNUInstallDirs)
install(FILES ${SONDAR_COUNTRY_TXT} DESTINATION ${CMAKE_INSTALL_DATADIR}/sondar)
