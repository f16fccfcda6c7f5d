// What the image accessor does within a session, which clients open and close in one call.
#include "configs/config.h"
#include "engine/config_class.h"

#include <filesystem>

#include "tests/support/board.h"

TEST(ImageSession, RefusesAnImageThatShrank)
{
    for (const auto &[size, status, settings] :
         {std::tuple{40, -108, ""}, {32, -102, ""}, {0, -102, ""}, {40, -108, "Write=inplace\n"}}) {
        SCOPED_TRACE(size);
        Desk desk;
        const std::string image(64, '1');
        desk.directory.Write("image", image);
        desk.directory.Write("empty", "");
        const std::string head =
            "[C]\nAccessor=" VELK_TEST_MODULE_DIR "/velkimage\nKeys=empty\nOptions=empty\n";
        EXPECT_EQ(desk.Start(head + "Image=image\nStride=32\nRegisters=1\n1=31 u8\n" + settings), 0);
        ASSERT_EQ(desk.Open("C") + desk.Load(1), 0);
        desk.config->table->regs[0].value = 0;

        const Accessor &accessor = desk.config->configClass->accessor;
        VelkWord session = 0;
        ASSERT_EQ(accessor.createSession(1, 0, &session), 0);
        std::filesystem::resize_file(desk.directory.Path("image"), static_cast<uintmax_t>(size));
        EXPECT_EQ(accessor.write(session, desk.config->table), status);
        accessor.closeSession(session);
        EXPECT_EQ(desk.directory.Read("image"), image.substr(0, static_cast<size_t>(size)));
    }
}
