#include "transports/UsbLinkFixture.h"

namespace {

std::string Pattern(size_t size, unsigned seed) {
    std::string data(size, '\0');
    FillPattern(std::span(reinterpret_cast<unsigned char*>(data.data()), size), seed);
    return data;
}

}  // namespace

TEST_F(UsbLink, AFileCrosses) {
    Connect();
    const std::string file = a.Do({"open", "new\\sub\\list.txt"});
    EXPECT_EQ(a.Do({"write", file, "1000", "3"}), "ok");
    EXPECT_EQ(a.Do({"close", file}), "ok");
    EXPECT_EQ(a.Do({"finish", "5"}), "ok");
    EXPECT_EQ(b.Watch({"status"}), "1 5");
    EXPECT_EQ(BytesOf("b\\new\\sub\\list.txt"), Pattern(1000, 3));
}
