// qv pod show [--json] FILE [--rows A:B]: the columns with their unit, class
// and type, the row count, and the cells of rows A to B (B excluded; the
// first ten without --rows), tab-separated. --json prints one object:
// {"file": FILE, "rows": N, "columns": [{"name", "unit", "class", "type"}...],
//  "firstRow": A, "cells": [[row A's cells as strings]...]}. Over a million
// rows shown, a progress line goes to standard error every million.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "Commands.h"
#include "Options.h"
#include "Output.h"
#include "PodFiles.h"

namespace qvtool {

namespace {

bool RowRange(char const *text, uint32_t rows, uint32_t &first, uint32_t &end) {
    char *colon = nullptr, *tail = nullptr;
    unsigned long long a = std::strtoull(text, &colon, 10);
    if (colon == text || *colon != ':') return false;
    unsigned long long b = std::strtoull(colon + 1, &tail, 10);
    if (tail == colon + 1 || *tail || a > b) return false;
    first = uint32_t(a < rows ? a : rows);
    end = uint32_t(b < rows ? b : rows);
    return true;
}

void ShowProgress(uint32_t row, uint32_t first, uint32_t end) {
    if (end - first > 1000000 && (row - first) % 1000000 == 0)
        std::fprintf(stderr, "qv: row %u of %u\n", row - first, end - first);
}

int PrintJson(char const *path, qv::CPODFile &pod, uint32_t first, uint32_t end) {
    CJsonWriter json(stdout);
    json.BeginObject();
    json.String("file", path);
    json.Integer("rows", pod.nDPs());
    json.BeginArray("columns");
    for (uint32_t col = 0; col < pod.nParams(); ++col) {
        char16_t const *name, *cls, *unit, *type;
        if (!pod.GetColumnInfo(col, &name, &cls, &unit, &type)) continue;
        json.BeginObject();
        json.String("name", PodText(name));
        json.String("unit", PodText(unit));
        json.String("class", PodText(cls));
        json.String("type", PodText(type));
        json.EndObject();
    }
    json.EndArray();
    json.Integer("firstRow", first);
    json.BeginArray("cells");
    for (uint32_t row = first; row < end; ++row) {
        ShowProgress(row, first, end);
        json.BeginArray();
        for (uint32_t col = 0; col < pod.nParams(); ++col) {
            char16_t const *value = pod.GetValue(col, row);
            if (!value) return CannotReadRow(pod, row, path); // the half object is cut off by the failure
            json.String(nullptr, PodText(value));
        }
        json.EndArray();
    }
    json.EndArray();
    json.EndObject();
    return FinishStandardOutput() ? 0 : kExitFailed;
}

} // namespace

int RunPodShow(char *const *args) {
    qv::CPODFile pod;
    if (!OpenPod(args[0], pod)) return kExitFailed;
    uint32_t first = 0, end = pod.nDPs() < 10 ? pod.nDPs() : 10;
    char const *range = GivenOptions().rows;
    if (range && !RowRange(range, pod.nDPs(), first, end))
        return Fail("--rows takes A:B, two row numbers with A not above B");
    if (GivenOptions().json) return PrintJson(args[0], pod, first, end);
    std::printf("rows %u, columns %u\n", pod.nDPs(), pod.nParams());
    for (uint32_t col = 0; col < pod.nParams(); ++col) {
        char16_t const *name, *cls, *unit, *type;
        if (!pod.GetColumnInfo(col, &name, &cls, &unit, &type)) continue;
        std::printf("column %u\t%s\tunit %s\tclass %s\ttype %s\n", col, Escaped(PodText(name)).c_str(),
                    Escaped(PodText(unit)).c_str(), Escaped(PodText(cls)).c_str(), Escaped(PodText(type)).c_str());
    }
    for (uint32_t row = first; row < end; ++row) {
        ShowProgress(row, first, end);
        std::printf("%u", row);
        for (uint32_t col = 0; col < pod.nParams(); ++col) {
            char16_t const *value = pod.GetValue(col, row);
            if (!value) return CannotReadRow(pod, row, args[0]);
            std::printf("\t%s", Escaped(PodText(value)).c_str());
        }
        std::printf("\n");
    }
    return FinishStandardOutput() ? 0 : kExitFailed;
}

} // namespace qvtool
