// The decision on a user that a list already holds under the same domain and name.
#pragma once

#include <cstdint>

struct UserFacts {
    bool hasHive = false;
    bool requiresHiveLoad = false;
    std::int64_t precedence = 0;
};

enum class DuplicateOutcome {
    SkipHiveToBeLoaded,     // the new user goes: the existing one's hive is loaded already
    ReplaceHiveToBeLoaded,  // the new user takes the place: it needs no hive to be loaded
    SkipSamePath,           // the new user goes: it is the same profile
    ExistingBecomesSubordinate,
    NewBecomesSubordinate,
};

DuplicateOutcome DecideDuplicate(const UserFacts& newUser, const UserFacts& existing, bool sameProfilePath);
