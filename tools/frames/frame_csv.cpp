#include "tools/frames/frame_csv.h"

#include <new>

namespace {

void take_cell(void *text, size_t size, void *data) {
    auto *csv = static_cast<frame_csv *>(data);
    if (csv->count == csv->cells.size())
        csv->cells.emplace_back();
    csv->cells[csv->count++].assign(static_cast<const char *>(text), size);
}

void take_row(int, void *data) {
    static_cast<frame_csv *>(data)->whole = true;
}

}  // namespace

frame_csv::frame_csv(char delimiter) {
    csv_init(&parser, CSV_APPEND_NULL);
    csv_set_delim(&parser, static_cast<unsigned char>(delimiter));
}

frame_csv::~frame_csv() {
    csv_free(&parser);
}

bool frame_csv_feed(frame_csv *csv, std::string_view line) {
    if (csv->whole || csv->pending_bytes == 0) {
        csv->count = 0;
        csv->whole = false;
        csv->pending_bytes = 0;
    }
    csv->pending_bytes += line.size() + 1;
    if (csv_parse(&csv->parser, line.data(), line.size(), take_cell, take_row, csv) !=
            line.size() ||
        csv_parse(&csv->parser, "\n", 1, take_cell, take_row, csv) != 1)
        throw std::bad_alloc();  // the one thing that goes wrong without strictness
    return csv->whole;
}

std::vector<std::string> frame_csv_split(std::string_view line, char delimiter) {
    frame_csv csv(delimiter);
    if (!frame_csv_feed(&csv, line))
        csv_fini(&csv.parser, take_cell, take_row, &csv);
    csv.cells.resize(csv.count);
    return csv.cells;
}
