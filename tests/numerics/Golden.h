// Reading the reference files under tests/numerics/data: lines of a tag and
// numbers, '#' lines skipped. Parsed with std::from_chars, which is exact and
// locale-free, so the tests see the very doubles the scripts wrote.
#pragma once

#include <charconv>
#include <cstddef>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "qv/core/Array.h"

namespace golden {

inline std::string DataDir() {
    return std::string(QV_TEST_DATA_DIR) + "/../tests/numerics/data/";
}

inline double Number(std::string const &text) {
    double v = 0;
    std::from_chars(text.data(), text.data() + text.size(), v);
    return v;
}

struct Record {
    std::string tag;
    std::vector<double> numbers;
};

inline std::vector<Record> Read(std::string const &name) {
    std::ifstream in(DataDir() + name);
    std::vector<Record> records;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream words(line);
        Record r;
        words >> r.tag;
        for (std::string w; words >> w;)
            r.numbers.push_back(Number(w));
        records.push_back(r);
    }
    return records;
}

// Takes numbers off the front of a record, in order.
class Cursor {
public:
    explicit Cursor(Record const &r) : numbers_(r.numbers) {}
    double Next() { return numbers_.at(at_++); }
    size_t Count() { return static_cast<size_t>(Next()); }
    std::vector<double> Take(size_t n) {
        std::vector<double> out(numbers_.begin() + at_, numbers_.begin() + at_ + n);
        at_ += n;
        return out;
    }
    size_t Left() const { return numbers_.size() - at_; }

private:
    std::vector<double> const &numbers_;
    size_t at_ = 0;
};

inline qv::TArray<double> ToArray(std::vector<double> const &v) {
    qv::TArray<double> a;
    for (double d : v)
        a.Add(d);
    return a;
}

inline std::vector<double> ToVector(qv::TArray<double> const &a) {
    return std::vector<double>(a.GetData(), a.GetData() + a.GetSize());
}

} // namespace golden
