// Test helper: runs a scope under a fixed time zone (TZ) and restores the
// previous setting afterwards. Not thread-safe, as setenv is not.
#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

class TimeZoneScope {
public:
    explicit TimeZoneScope(char const *zone) {
        if (char const *old = std::getenv("TZ")) saved_ = old;
        Apply(zone);
    }
    ~TimeZoneScope() { Apply(saved_ ? saved_->c_str() : nullptr); }
    TimeZoneScope(TimeZoneScope const &) = delete;
    TimeZoneScope &operator=(TimeZoneScope const &) = delete;

private:
    static void Apply(char const *zone) {
        if (zone)
            setenv("TZ", zone, 1);
        else
            unsetenv("TZ");
        tzset();
    }

    std::optional<std::string> saved_;
};
