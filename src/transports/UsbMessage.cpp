#include "transports/UsbMessage.h"

#include <array>

namespace {

constexpr std::uint32_t kFirstCommand = UsbCmdConnect;
constexpr std::size_t kCommandRange = UsbCmdResendLast - UsbCmdConnect + 1;

constexpr auto kShapes = [] {
    using enum UsbField;
    std::array<UsbShape, kCommandRange> shapes{};
    const auto set = [&shapes](UsbCommand command, UsbField a = None, UsbField b = None, UsbField c = None) {
        shapes[command - kFirstCommand] = {{a, b, c}, false, true};
    };
    set(UsbCmdConnect);
    set(UsbCmdConnectReply);
    set(UsbCmdOpenFile, Count);
    set(UsbCmdOpenFileReply, Handle);
    set(UsbCmdReadFile, Handle, Count);
    set(UsbCmdReadFileReply, Count);
    set(UsbCmdWriteFile, Handle, Count);
    set(UsbCmdWriteFileReply, Count);
    set(UsbCmdSeekFile, Handle, Position, Method);
    set(UsbCmdSeekFileReply, Position);
    set(UsbCmdCloseFile, Handle);
    set(UsbCmdCloseFileReply);
    set(UsbCmdDirectoryExists, Count);
    set(UsbCmdDirectoryExistsReply, Count);
    set(UsbCmdDriveFreeSpace);
    set(UsbCmdDriveFreeSpaceReply, FreeBytes);
    set(UsbCmdFinish, Count);
    set(UsbCmdFinishReply);
    set(UsbCmdDisconnected);
    set(UsbCmdResendLast);
    for (const UsbCommand command : {UsbCmdOpenFile, UsbCmdReadFileReply, UsbCmdWriteFile, UsbCmdDirectoryExists}) {
        shapes[command - kFirstCommand].hasTail = true;
    }
    return shapes;
}();

std::uint64_t FieldValue(UsbField field, const UsbMessage& message) {
    switch (field) {
        case UsbField::Handle:
            return message.handle;
        case UsbField::Position:
            return static_cast<std::uint64_t>(message.position);
        case UsbField::FreeBytes:
            return message.freeBytes;
        case UsbField::Count:
            return message.count;
        case UsbField::Method:
            return message.method;
        case UsbField::None:
            break;
    }
    return 0;
}

void Append(std::vector<std::uint8_t>& bytes, std::uint64_t value, std::uint32_t size) {
    for (std::uint32_t i = 0; i < size; ++i) bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

}  // namespace

UsbShape UsbShapeOf(std::uint32_t command) {
    const std::uint32_t index = command - kFirstCommand;
    return index < kShapes.size() ? kShapes[index] : UsbShape{};
}

std::uint32_t UsbFieldBytes(UsbField field) {
    switch (field) {
        case UsbField::Handle:
        case UsbField::Position:
        case UsbField::FreeBytes:
            return 8;
        case UsbField::Count:
        case UsbField::Method:
            return 4;
        case UsbField::None:
            break;
    }
    return 0;
}

std::vector<std::uint8_t> EncodeUsbMessage(const UsbMessage& message) {
    std::vector<std::uint8_t> bytes;
    bytes.reserve(24);
    Append(bytes, message.command, 4);
    for (const UsbField field : UsbShapeOf(message.command).fields) {
        Append(bytes, FieldValue(field, message), UsbFieldBytes(field));
    }
    return bytes;
}

void DecodeUsbField(UsbField field, std::span<const std::uint8_t> bytes, UsbMessage& message) {
    std::uint64_t value = 0;
    for (std::size_t i = bytes.size(); i > 0; --i) value = value << 8 | bytes[i - 1];
    switch (field) {
        case UsbField::Handle:
            message.handle = value;
            break;
        case UsbField::Position:
            message.position = static_cast<std::int64_t>(value);
            break;
        case UsbField::FreeBytes:
            message.freeBytes = value;
            break;
        case UsbField::Count:
            message.count = static_cast<std::uint32_t>(value);
            break;
        case UsbField::Method:
            message.method = static_cast<std::uint32_t>(value);
            break;
        case UsbField::None:
            break;
    }
}

bool UsbMessageFits(const UsbMessage& message, std::uint32_t askedBytes) {
    switch (message.command) {
        case UsbCmdOpenFile:
        case UsbCmdDirectoryExists:
            return message.count <= kUsbNameBytes && message.count % 2 == 0;
        case UsbCmdReadFile:
        case UsbCmdWriteFile:
            return message.count <= kUsbTransferBytes;
        case UsbCmdReadFileReply:
        case UsbCmdWriteFileReply:
            return message.count <= askedBytes;
        default:
            return true;
    }
}

bool IsUsbReply(std::uint32_t command) {
    switch (command) {
        case UsbCmdConnectReply:
        case UsbCmdOpenFileReply:
        case UsbCmdReadFileReply:
        case UsbCmdWriteFileReply:
        case UsbCmdSeekFileReply:
        case UsbCmdCloseFileReply:
        case UsbCmdDirectoryExistsReply:
        case UsbCmdDriveFreeSpaceReply:
        case UsbCmdFinishReply:
            return true;
        default:
            return false;
    }
}
