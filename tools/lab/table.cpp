#include "tools/lab/table.h"

#include "tools/simulated/settings.h"

std::string figures_source(const simulated_figures &figures) {
    std::string source =
        "#include \"fia/freq_tables.h\"\n"
        "\n"
        "constexpr tmk_freq_row tmk_freq_table[tmk_freq_rows] = {\n";
    for (const tmk_freq_row &row : figures.rows) {
        source += row.type == freq_type_gpu ? "    {freq_type_gpu, {" : "    {freq_type_cpu, {";
        for (uint32_t level = 0; level < freq_level_slots && row.freqs[level] != 0; ++level)
            source.append(level > 0 ? ", " : "").append(std::to_string(row.freqs[level]));
        source.append("}, \"").append(row.name).append("\"},\n");
    }
    source +=
        "};\n"
        "\n"
        "constexpr fia_tunables target_fia_tunables = {\n";
    for (const auto &[name, value] : settings_of(figures))
        if (name.find('.') == std::string::npos)
            source.append("    .").append(name).append(" = ").append(std::to_string(value)) +=
                ",\n";
    return source + "};\n";
}
