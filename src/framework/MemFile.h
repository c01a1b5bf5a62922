// A file in memory, which grows as it is written:
//
//     CMemFile file(64 * 1024);                       // grows by whole steps of 64 KiB
//     file.Write(head, sizeof(head));
//     void* start = nullptr;
//     void* stop = nullptr;
//     file.SeekToBegin();
//     file.GetBufferPtr(CFile::bufferRead, static_cast<UINT>(file.GetLength()), &start, &stop);
//
// Sizes and positions are bytes. A position behind the end is allowed; what lies between the end and the first byte
// written there is zero.
#pragma once

#include "framework/File.h"

class AFX_API CMemFile : public CFile {
    DECLARE_DYNAMIC(CMemFile)

public:
    // With a step of 0 the file holds nothing: writing throws a memory exception.
    explicit CMemFile(UINT growBytes = 1024) : m_nGrowBytes(growBytes) {}
    ~CMemFile() override;

    // Hands the buffer over, which the caller then frees by free(), and leaves an empty file. Null if nothing was ever
    // written. Ask for the length first.
    BYTE* Detach();
    // With bufferRead: the bytes from the position on, at most `count` and at most up to the end, as [*start, *stop);
    // the position moves behind them. Returns how many. They stay where they are until the next write.
    // With bufferWrite: room for `count` bytes at the position, which must not lie behind the end. What is put there
    // belongs to the file when bufferCommit says how many bytes it is; `start` and `stop` are not used then.
    virtual UINT GetBufferPtr(UINT command, UINT count, void** start, void** stop);

    UINT Read(void* buffer, UINT count) override;
    void Write(const void* buffer, UINT count) override;
    ULONGLONG Seek(LONGLONG offset, UINT from) override;
    ULONGLONG GetPosition() const override { return m_nPosition; }
    ULONGLONG GetLength() const override { return m_nFileSize; }
    // The bytes of a longer file are lost, its memory is kept; a shorter one is filled with zeros.
    void SetLength(ULONGLONG length);
    // Frees the buffer; the file cannot grow afterwards.
    void Close() override;

protected:
    SIZE_T m_nGrowBytes;
    SIZE_T m_nPosition = 0;
    SIZE_T m_nBufferSize = 0;
    SIZE_T m_nFileSize = 0;
    BYTE* m_lpBuffer = nullptr;

private:
    // What can be read from the position on.
    UINT Available(UINT count) const;
    // The position after `count` more bytes.
    SIZE_T End(UINT count) const;
    void GrowFile(SIZE_T bytes);
};
