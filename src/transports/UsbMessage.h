// The messages of the USB link, as they stand on the wire: a code of four bytes, then the fields that the code implies,
// then, for some, as many bytes of a name or of data as the last field says. All numbers are little-endian. Nothing
// frames a message, so a reader that takes a byte too many or too few is lost.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

// A reply's code is its request's code and one.
enum UsbCommand : std::uint32_t {
    UsbCmdConnect = 0x1233,
    UsbCmdConnectReply = 0x1234,
    UsbCmdOpenFile = 0x1235,
    UsbCmdOpenFileReply = 0x1236,
    UsbCmdReadFile = 0x1237,
    UsbCmdReadFileReply = 0x1238,
    UsbCmdWriteFile = 0x1239,
    UsbCmdWriteFileReply = 0x123A,
    UsbCmdSeekFile = 0x123B,
    UsbCmdSeekFileReply = 0x123C,
    UsbCmdCloseFile = 0x123D,
    UsbCmdCloseFileReply = 0x123E,
    UsbCmdDirectoryExists = 0x1241,
    UsbCmdDirectoryExistsReply = 0x1242,
    UsbCmdDriveFreeSpace = 0x1245,
    UsbCmdDriveFreeSpaceReply = 0x1246,
    UsbCmdFinish = 0x1247,
    UsbCmdFinishReply = 0x1248,
    UsbCmdDisconnected = 0x1249,
    UsbCmdResendLast = 0x1250
};

constexpr std::uint64_t kUsbNoHandle = ~std::uint64_t{0};         // what a failed opening answers
constexpr std::uint32_t kUsbChunkBytes = 1048576;                 // what one read or write of ours carries at most
constexpr std::uint32_t kUsbNameBytes = 520;                      // the longest name that is taken in: 260 characters
constexpr std::uint32_t kUsbTransferBytes = 64 * kUsbChunkBytes;  // the most that a peer may ask for or send at once

// A message without its name or data. A message uses those of the fields that its code implies.
struct UsbMessage {
    std::uint32_t command = 0;
    std::uint64_t handle = 0;   // the serving side's, whole
    std::int64_t position = 0;  // distance or new position
    std::uint64_t freeBytes = 0;
    std::uint32_t count = 0;   // bytes of a name, bytes wanted, sent or done, a flag, a status
    std::uint32_t method = 0;  // where a seek starts
    bool operator==(const UsbMessage&) const = default;
};

enum class UsbField : std::uint8_t { None, Handle, Position, FreeBytes, Count, Method };

struct UsbShape {
    UsbField fields[3] = {};  // in wire order
    bool hasTail = false;     // `count` bytes follow
    bool isKnown = false;
};

// The shape of a message of that code; not known for the holes between the codes and for all other numbers.
UsbShape UsbShapeOf(std::uint32_t command);

// Bytes of a field on the wire; 0 for none.
std::uint32_t UsbFieldBytes(UsbField field);

// Code and fields; the name or the data goes behind them. The code must be a known one.
std::vector<std::uint8_t> EncodeUsbMessage(const UsbMessage& message);

// Sets the field from its bytes, which are UsbFieldBytes(field).
void DecodeUsbField(UsbField field, std::span<const std::uint8_t> bytes, UsbMessage& message);

// Whether what a message announces can be taken in and done: a name of whole characters that is not too long, a
// transfer of bearable size, and no more bytes in a reply than `askedBytes`.
bool UsbMessageFits(const UsbMessage& message, std::uint32_t askedBytes);

// The code is a reply's, so somebody must have asked.
bool IsUsbReply(std::uint32_t command);
