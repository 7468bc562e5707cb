# Writes a C++ source holding every resources/strings/<language>/*.strings file,
# so the program carries its texts without looking for files at run time.
function(corvalis_embed_string_tables output)
  file(GLOB tables CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/resources/strings/*/*.strings)
  set(entries "")
  foreach(table ${tables})
    get_filename_component(folder ${table} DIRECTORY)
    get_filename_component(language ${folder} NAME)
    file(READ ${table} text)
    string(APPEND entries "        {\"${language}\", R\"__strings__(${text})__strings__\"},\n")
  endforeach()
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${tables})
  file(CONFIGURE OUTPUT ${output} CONTENT "// Generated from resources/strings; edit those files instead.
#include \"text/StringTables.h\"

namespace corvalis {

const std::vector<StringTableSource>& stringTableSources() {
    static const std::vector<StringTableSource> sources = {
${entries}    };
    return sources;
}

}  // namespace corvalis
" @ONLY)
endfunction()
