// Tables of comma-separated values as spreadsheets write them: with semicolons and decimal commas
// where the country has those.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Hands out each row's cells with its line, counted from 1; empty rows and those that begin with
// '#' are left out. Empty, or why the text is no table.
std::string csv_rows(
    std::string_view text,
    const std::function<void(size_t line, const std::vector<std::string> &)> &take);

// A number, with a decimal comma too; none where it is something else, or not finite.
std::optional<double> csv_number(std::string text);
