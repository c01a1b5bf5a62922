#include "carry/Apply.h"

#include "carry/OutputFile.h"
#include "carry/RegistryChanges.h"
#include "carry/RegistryFileInput.h"
#include "carry/UndoFile.h"
#include "files/LongPathFile.h"

namespace {

const char* TextOf(SkippedLine reason) {
    switch (reason) {
        case SkippedLine::NotUnderstood:
            return "neither a key nor a value";
        case SkippedLine::UnknownHive:
            return "a key of no known hive";
        case SkippedLine::NoKey:
            return "a value without a key";
        case SkippedLine::BrokenValue:
            return "a value whose data are not understood";
        case SkippedLine::NameTooLong:
            return "a name that is too long";
        case SkippedLine::TextEnds:
            return "a zero character ends the text here";
        case SkippedLine::NoLineEnd:
            return "the last line has no end: the file may have been cut";
    }
    return "";
}

// The first reading: counts what there is to do, and refuses what is not done.
class Check final : public RegistryFileSink {
public:
    Check(const RegistryTarget& target, const std::wstring& file, const ApplyOptions& options)
        : m_target(target), m_file(file), m_options(options) {}

    void Start(const RegistryFileReader& reader) { m_reader = &reader; }
    CarryReport Report() { return std::move(m_report); }

    void OnKey(const KeyName& key) override {
        ExpectReachable(key);
        ++m_report.keys;
    }
    void OnKeyRemoval(const KeyName& key) override {
        ExpectReachable(key);
        if (!m_options.removeHives && IsWholeHive(key)) Refuse("this removes a whole hive", key);
        ++m_report.removedKeys;
    }
    void OnValue(std::wstring_view, std::uint32_t, std::span<const std::uint8_t> data) override {
        ++m_report.values;
        m_report.bytes += data.size();
    }
    void OnValueRemoval(std::wstring_view) override { ++m_report.removedValues; }
    void OnSkipped(SkippedLine reason) override {
        m_report.Add(
            {.kind = CarryNoteKind::SkippedLine, .path = m_file, .line = m_reader->Line(), .reason = TextOf(reason)});
    }

private:
    void ExpectReachable(const KeyName& key) const {
        if (m_options.progress) TellProgress(m_options.progress, {.path = FormatKeyName(key)});
        if (!m_target.Find(key)) Refuse("the installation has no such key, or no user was named", key);
    }
    [[noreturn]] void Refuse(const char* reason, const KeyName& key) const {
        throw CarryException(CarryFailure::Refused, reason, FormatKeyName(key), 0, m_reader->Line());
    }

    const RegistryTarget& m_target;
    const std::wstring& m_file;
    const ApplyOptions& m_options;
    const RegistryFileReader* m_reader = nullptr;
    CarryReport m_report;
};

CarryReport CheckFile(const RegistryTarget& target, const RegistryFileInput& input, const std::wstring& file,
                      const ApplyOptions& options) {
    Check check(target, file, options);
    input.Read(check, [&](const RegistryFileReader& reader) { check.Start(reader); });
    return check.Report();
}

void WriteUndoFile(const RegistryTarget& target, const RegistryFileInput& input, const ApplyOptions& options) {
    OutputFile output(options.undoFile, options.replaceFile);
    UndoFile undo(
        target, [&](std::wstring_view text) { output.Write(text.data(), text.size() * sizeof(wchar_t)); },
        options.progress);
    input.Read(undo);
    undo.Finish();
    output.Finish();
}

void Change(RegistryTarget& target, const RegistryFileInput& input, const CarryProgressFunction& progress) {
    RegistryChanges changes(target, progress);
    input.Read(changes);
    changes.Finish();
    target.WriteBack();
}

// Whether all is as it was.
bool TakeBack(RegistryTarget& target, const std::wstring& undoFile) {
    try {
        Change(target, RegistryFileInput(undoFile), {});
        return true;
    } catch (const CarryException&) {
        return false;
    }
}

}  // namespace

CarryReport Apply(RegistryTarget& target, const std::wstring& file, const ApplyOptions& options) {
    const RegistryFileInput input(file);
    CarryReport report = CheckFile(target, input, file, options);
    if (options.dryRun) return report;
    if (!options.undoFile.empty()) WriteUndoFile(target, input, options);
    try {
        Change(target, input, options.progress);
    } catch (const CarryException& problem) {
        const bool isTakenBack = !options.undoFile.empty() && TakeBack(target, options.undoFile);
        if (isTakenBack) DeleteFileW(LongPath::ForSystemCall(options.undoFile.c_str()));
        throw CarryException(isTakenBack ? CarryFailure::TakenBack : CarryFailure::NotTakenBack, problem.what(),
                             problem.Path(), problem.Status(), problem.Line());
    }
    return report;
}
