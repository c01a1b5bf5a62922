// Writes the file that puts back what a registry file changes: what stands there before, and the removal of what is
// made.
//
// Each key and value that the file touches is told as it is at the start, so the order of what the undo file does is of
// no matter, and it works as well when only a part of the changes was made. What a registry file does not hold is not
// put back: access lists and class names of keys that are removed.
#pragma once

#include "carry/CoveredKeys.h"
#include "carry/RegistryFileReader.h"
#include "carry/RegistryFileWriter.h"
#include "carry/SelectionWalk.h"

class UndoFile final : public RegistryFileSink, private RegistryVisitor {
public:
    UndoFile(const RegistryTarget& target, RegistryFileWriter::Write write, const CarryProgressFunction& progress)
        : m_target(target), m_writer(std::move(write)), m_progress(progress) {}

    void Finish();

    // The registry file, read to its end before anything is changed. They throw CarryException for what cannot be told,
    // and so could not be put back.
    void OnKey(const KeyName& key) override;
    void OnKeyRemoval(const KeyName& key) override;
    void OnValue(std::wstring_view name, std::uint32_t type, std::span<const std::uint8_t> data) override;
    void OnValueRemoval(std::wstring_view name) override;
    void OnSkipped(SkippedLine) override {}

private:
    void OnKey(const std::wstring& path) override {
        TellProgress(m_progress, {.path = path});
        m_writer.Key(path);
    }
    void OnValue(const ValueBuffer& value) override { m_writer.Value(value.Name(), value.Type(), value.Data()); }
    void OnNote(CarryNote note) override;

    bool IsCovered(const KeyName& key) const;
    bool IsThere(const KeyName& key) const;
    void TellAbsence();
    void Touch(std::wstring_view name, LinkMode mode);
    void EnterKey(LinkMode mode);
    void LeaveKey();

    const RegistryTarget& m_target;
    RegistryFileWriter m_writer;
    const CarryProgressFunction& m_progress;
    CoveredKeys m_covered;
    KeyName m_key;
    bool m_isOpen = false;     // m_key is looked at
    bool m_isCovered = false;  // all of m_key is told
    bool m_isHeaded = false;   // the undo file is at m_key
    UniqueKey m_handle;
    ValueBuffer m_value;
};
