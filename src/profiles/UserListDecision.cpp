#include "profiles/UserListDecision.h"

DuplicateOutcome DecideDuplicate(const UserFacts& newUser, const UserFacts& existing, bool sameProfilePath) {
    const bool newNeedsLoad = newUser.hasHive && newUser.requiresHiveLoad;
    if (newNeedsLoad && existing.hasHive && !existing.requiresHiveLoad) return DuplicateOutcome::SkipHiveToBeLoaded;
    // Not the mirror image of the first rule: a new user counts here only when it has no hive at all.
    const bool newHasNothingToLoad = !newUser.hasHive && !newUser.requiresHiveLoad;
    if (newHasNothingToLoad && existing.hasHive && existing.requiresHiveLoad) {
        return DuplicateOutcome::ReplaceHiveToBeLoaded;
    }
    if (sameProfilePath) return DuplicateOutcome::SkipSamePath;
    return newUser.precedence > existing.precedence ? DuplicateOutcome::ExistingBecomesSubordinate
                                                    : DuplicateOutcome::NewBecomesSubordinate;
}
