# Writes the source file <output>, which contains the files <name>... of <folder> as
# Tarn::libraryTemplates(). It changes only if they do.
function(fathom_embed_templates output folder)
    set(entries "")
    foreach(name IN LISTS ARGN)
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS "${folder}/${name}")
        file(READ "${folder}/${name}" text)
        string(APPEND entries "        {\"${name}\", R\"template(${text})template\"},\n")
    endforeach()
    file(WRITE "${output}.new"
"#include <tarn/commands/Templates.hpp>

namespace Tarn {

const std::vector<Template>& libraryTemplates()
{
    static const std::vector<Template> templates{
${entries}    };
    return templates;
}

} // namespace Tarn
")
    file(COPY_FILE "${output}.new" "${output}" ONLY_IF_DIFFERENT)
endfunction()
