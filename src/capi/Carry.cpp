// What rules select, captured and applied.
#include <utility>

#include "capi/Arguments.h"
#include "capi/RuleStore.h"
#include "carry/Apply.h"
#include "carry/Capture.h"
#include "carry/SelectionWalk.h"

namespace {

// The numbers of the interface are those of the carrying, which may not be changed without it.
static_assert(static_cast<int>(CarryNoteKind::SkippedLine) == RR_NOTE_SKIPPED_LINE);
static_assert(static_cast<int>(CarryNoteKind::OutOfReach) == RR_NOTE_OUT_OF_REACH);
static_assert(static_cast<int>(RuleFlaw::Repeated) == RR_FLAW_REPEATED);
static_assert(static_cast<int>(RuleFlaw::Shadowed) == RR_FLAW_SHADOWED);

constexpr std::uint32_t kCaptureFlags = RR_REPLACE;
constexpr std::uint32_t kApplyFlags = RR_REPLACE | RR_DRY_RUN | RR_REMOVE_HIVES | RR_NO_UNDO;

void RequireFlags(std::uint32_t flags, std::uint32_t known) {
    if ((flags & ~known) != 0) throw StatusError{RR_E_ARGUMENT, "a flag that this function does not know"};
}

RegistryTarget TakeTarget(const rr_target* given) {
    const rr_target target = TakeStruct(given);
    const std::int32_t drive = target.drive & ~0x20;
    if (target.drive != 0 && (drive < 'A' || drive > 'Z')) throw StatusError{RR_E_ARGUMENT, "a drive is a letter"};
    return RegistryTarget({static_cast<WCHAR>(drive), TakeText(target.user, target.user_length, kLongestPath)});
}

std::wstring TakeFile(const wchar_t* file, size_t length) {
    std::wstring text = TakeText(file, length, kLongestPath);
    if (text.empty()) throw StatusError{RR_E_ARGUMENT, "a file has no name"};
    return text;
}

// The rules of a set, one kind after the other.
class TakenRules {
public:
    explicit TakenRules(rr_rules handle) {
        const LockedRules entries(handle);
        for (const KeyRuleEntry& rule : entries->keys) {
            m_rules.push_back({rule.isBranch ? CarryKind::Branch : CarryKind::Key, rule.key, {}});
        }
        m_keys = m_rules.size();
        for (const ValueRuleEntry& rule : entries->values) {
            m_rules.push_back({CarryKind::Value, rule.key, rule.value});
        }
    }

    const std::vector<CarryRule>& Rules() const { return m_rules; }
    // Says which rule the note is about.
    void Name(rr_note& note, std::size_t rule) const {
        note.is_value_rule = rule < m_keys ? 0 : 1;
        note.rule = rule < m_keys ? rule : rule - m_keys;
    }

private:
    std::vector<CarryRule> m_rules;
    std::size_t m_keys = 0;
};

// The caller's functions. What they throw, as far as this compiler sees it, must not pass through work that is half
// done.
class Callbacks {
public:
    explicit Callbacks(const rr_callbacks* given) : m_given(TakeStruct(given)) {}

    CarryProgressFunction Progress() const {
        if (m_given.progress == nullptr) return {};
        return [this](const CarryProgress& done) {
            const rr_progress progress{.size = sizeof(rr_progress),
                                       .keys = done.keys,
                                       .values = done.values,
                                       .bytes = done.bytes,
                                       .path = done.path.data(),
                                       .path_length = done.path.size()};
            return Call(m_given.progress, progress);
        };
    }
    void Item(const rr_item& item) const {
        if (Call(m_given.item, item)) return;
        throw CarryException(CarryFailure::Cancelled, "cancelled", std::wstring(item.key, item.key_length));
    }
    // False when no more are wanted.
    bool Note(const rr_note& note) const { return Call(m_given.note, note); }

private:
    template <class Argument>
    bool Call(int32_t (*function)(void*, const Argument*), const Argument& argument) const {
        try {
            return function == nullptr || function(m_given.context, &argument) != 0;
        } catch (...) {
            return false;
        }
    }

    rr_callbacks m_given;
};

rr_note NoteOf(const CarryNote& note) {
    return {.size = sizeof(rr_note),
            .kind = static_cast<int32_t>(note.kind),
            .win32 = note.status,
            .line = note.line,
            .path = note.path.c_str(),
            .path_length = note.path.size(),
            .value = note.isValue ? note.value.c_str() : nullptr,
            .value_length = note.isValue ? note.value.size() : 0,
            .flaw = 0,
            .is_value_rule = 0,
            .rule = 0};
}

rr_note NoteOf(const RuleFinding& finding, const TakenRules& rules) {
    const CarryRule& rule = rules.Rules()[finding.rule];
    rr_note note{.size = sizeof(rr_note),
                 .kind = RR_NOTE_FLAW,
                 .win32 = 0,
                 .line = 0,
                 .path = rule.key.c_str(),
                 .path_length = rule.key.size(),
                 .value = rule.kind == CarryKind::Value ? rule.value.c_str() : nullptr,
                 .value_length = rule.value.size(),
                 .flaw = static_cast<int32_t>(finding.flaw),
                 .is_value_rule = 0,
                 .rule = 0};
    rules.Name(note, finding.rule);
    return note;
}

// Tells notes as long as they are wanted, and counts all.
class Notes {
public:
    explicit Notes(const Callbacks& callbacks) : m_callbacks(callbacks) {}

    void Tell(const rr_note& note) {
        ++m_count;
        m_isWanted = m_isWanted && m_callbacks.Note(note);
    }
    void Tell(const RuleSelection& selection, const TakenRules& rules) {
        for (const RuleFinding& finding : selection.Findings()) Tell(NoteOf(finding, rules));
    }
    // Fills the caller's report, and gives the status of work that was done.
    rr_status Finish(const CarryReport& report, rr_report* to) {
        for (const CarryNote& note : report.notes) Tell(NoteOf(note));
        if (report.noteCount > report.notes.size()) {
            rr_note more = NoteOf(CarryNote{});
            more.kind = RR_NOTE_MORE;
            Tell(more);
            m_count += report.noteCount - report.notes.size() - 1;
        }
        PutStruct(to, {.size = 0,
                       .keys = report.keys,
                       .values = report.values,
                       .bytes = report.bytes,
                       .removed_keys = report.removedKeys,
                       .removed_values = report.removedValues,
                       .notes = m_count});
        return m_count == 0 ? RR_OK : RR_TOLD;
    }

private:
    const Callbacks& m_callbacks;
    std::uint64_t m_count = 0;
    bool m_isWanted = true;
};

class Listing final : public RegistryVisitor {
public:
    explicit Listing(const Callbacks& callbacks) : m_callbacks(callbacks), m_progress(callbacks.Progress()) {}

    void OnKey(const std::wstring& path) override {
        TellProgress(m_progress, {m_report.keys, m_report.values, m_report.bytes, path});
        m_path = path;
        ++m_report.keys;
        m_callbacks.Item({.size = sizeof(rr_item),
                          .key = m_path.c_str(),
                          .key_length = m_path.size(),
                          .value = nullptr,
                          .value_length = 0,
                          .type = 0,
                          .data = nullptr,
                          .data_size = 0});
    }
    void OnValue(const ValueBuffer& value) override {
        ++m_report.values;
        m_report.bytes += value.Data().size();
        m_callbacks.Item({.size = sizeof(rr_item),
                          .key = m_path.c_str(),
                          .key_length = m_path.size(),
                          .value = value.Name().data(),
                          .value_length = value.Name().size(),
                          .type = value.Type(),
                          .data = value.Data().data(),
                          .data_size = value.Data().size()});
    }
    void OnNote(CarryNote note) override { m_report.Add(std::move(note)); }

    const CarryReport& Report() const { return m_report; }

private:
    const Callbacks& m_callbacks;
    CarryProgressFunction m_progress;
    std::wstring m_path;
    CarryReport m_report;
};

}  // namespace

rr_status rr_list(rr_rules rules, const rr_target* target, const rr_callbacks* callbacks, rr_report* report) {
    return Guard([&] {
        CheckOutput(report);
        const Callbacks told(callbacks);
        const TakenRules taken(rules);
        const RuleSelection selection(taken.Rules(), FoldKeyCase);
        const RegistryTarget from = TakeTarget(target);
        Listing listing(told);
        for (const SelectedPart& part : selection.Parts()) WalkPart(from, part, listing);
        Notes notes(told);
        notes.Tell(selection, taken);
        return notes.Finish(listing.Report(), report);
    });
}

rr_status rr_check(rr_rules rules, const rr_target* target, const rr_callbacks* callbacks, rr_report* report) {
    return Guard([&] {
        CheckOutput(report);
        const Callbacks told(callbacks);
        const TakenRules taken(rules);
        const RegistryTarget from = TakeTarget(target);
        Notes notes(told);
        const RuleSelection selection(taken.Rules(), FoldKeyCase);
        notes.Tell(selection, taken);
        for (std::size_t i = 0; i < taken.Rules().size(); ++i) {
            const auto missing = FindMissing(from, taken.Rules()[i]);
            if (!missing) continue;
            rr_note note = NoteOf(*missing);
            taken.Name(note, i);
            notes.Tell(note);
        }
        return notes.Finish({}, report);
    });
}

rr_status rr_capture(rr_rules rules, const rr_target* target, const wchar_t* file, size_t file_length, uint32_t flags,
                     const rr_callbacks* callbacks, rr_report* report) {
    return Guard([&] {
        CheckOutput(report);
        RequireFlags(flags, kCaptureFlags);
        const Callbacks told(callbacks);
        const std::wstring path = TakeFile(file, file_length);
        const TakenRules taken(rules);
        const RuleSelection selection(taken.Rules(), FoldKeyCase);
        const CarryReport done =
            Capture(TakeTarget(target), selection, path, {(flags & RR_REPLACE) != 0, told.Progress()});
        Notes notes(told);
        notes.Tell(selection, taken);
        return notes.Finish(done, report);
    });
}

rr_status rr_apply(const rr_target* target, const wchar_t* file, size_t file_length, const wchar_t* undo,
                   size_t undo_length, uint32_t flags, const rr_callbacks* callbacks, rr_report* report) {
    return Guard([&] {
        CheckOutput(report);
        RequireFlags(flags, kApplyFlags);
        const Callbacks told(callbacks);
        const std::wstring path = TakeFile(file, file_length);
        const std::wstring back = (flags & (RR_NO_UNDO | RR_DRY_RUN)) != 0 ? L"" : TakeFile(undo, undo_length);
        RegistryTarget to = TakeTarget(target);
        const CarryReport done = Apply(to, path,
                                       {.undoFile = back,
                                        .replaceFile = (flags & RR_REPLACE) != 0,
                                        .dryRun = (flags & RR_DRY_RUN) != 0,
                                        .removeHives = (flags & RR_REMOVE_HIVES) != 0,
                                        .progress = told.Progress()});
        return Notes(told).Finish(done, report);
    });
}
