#pragma once

namespace fenlark {

class Database;

// Rate data for the demo property and the generated properties: rate sheets,
// seasons, weekend rates, long-stay rules, a package and child bands for every
// room type already in the database. Deterministic for a given seed.
class SampleRateData {
public:
    static void write(Database &db, unsigned seed);
};

} // namespace fenlark
