#include <marlet/foundation/KyID.h>

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <thread>

namespace
{

using kytl::KyID;

/// An ID whose groups have a leading zero each and whose bytes all differ.
constexpr KyID kSample = {0x01234567, 0x089A, 0x0BCD, {0x0E, 0xF1, 0x02, 0x13, 0x24, 0x35, 0x46, 0x57}};
constexpr char kSampleText[] = "01234567-089a-0bcd-0ef1-021324354657";

TEST(KyIDTest, IsWrittenInFiveGroupsOfLowerCaseDigits)
{
    EXPECT_EQ(kSample.ToNarrowString(), kSampleText);
    EXPECT_EQ(kSample.ToWideString(), u"01234567-089a-0bcd-0ef1-021324354657");
    EXPECT_EQ(KyID().ToNarrowString(), "00000000-0000-0000-0000-000000000000");
}

TEST(KyIDTest, IsReadInEitherCaseAndWidth)
{
    EXPECT_EQ(KyID::FromString(kSampleText), kSample);
    EXPECT_EQ(KyID::FromString(u"01234567-089A-0BCD-0EF1-021324354657"), kSample);
    EXPECT_TRUE(KyID::FromString("00000000-0000-0000-0000-000000000000").IsNull());
    EXPECT_FALSE(kSample.IsNull());
    EXPECT_FALSE((KyID{0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 1}}).IsNull());
}

TEST(KyIDTest, RefusesAnyOtherText)
{
    const std::u16string texts[] = {u"",
                                    u"{01234567-089a-0bcd-0ef1-021324354657}",
                                    u"01234567-089a-0bcd-0ef1-02132435465",
                                    u"01234567-089a-0bcd-0ef1-0213243546570",
                                    u" 1234567-089a-0bcd-0ef1-021324354657",
                                    u"01234567-089a-0bcd-0ef1-02132435465g",
                                    u"0123456g-089a-0bcd-0ef1-021324354657",
                                    u"01234567+089a-0bcd-0ef1-021324354657",
                                    u"01234567-089a-0bcd-0ef10021324354657",
                                    u"01234567-089a-0bcd-0ef1-02132435465\u0137",
                                    u"0123456789ab-0bcd-0ef1-0213-24354657"};
    for (const std::u16string &text : texts) {
        SCOPED_TRACE(marlet::project::ToUtf8(text));
        for (const bool wide : {false, true}) {
            try {
                const KyID id =
                    wide ? KyID::FromString(text) : KyID::FromString(marlet::project::ToUtf8(text));
                ADD_FAILURE() << "was read as " << id.ToNarrowString();
            } catch (const std::runtime_error &error) {
                EXPECT_STREQ(error.what(), "Cannot construct KyID from string");
            }
        }
    }
}

/// Beside it the fold in 64 bits, by multiplication and division, cut back to 32 bits after each step.
TEST(KyIDTest, HashFoldsElevenValuesInOrder)
{
    const auto slowly = [](std::initializer_list<std::uint64_t> values) {
        std::uint64_t hash = 0;
        for (const std::uint64_t value : values) {
            const std::uint64_t mixed = value + 2654435769u + hash * 64 + hash / 4;
            hash = (hash ^ mixed) % 4294967296u;
        }
        return hash;
    };
    EXPECT_EQ(kSample.Hash(),
              slowly({0x01234567, 0x089A, 0x0BCD, 0x0E, 0xF1, 0x02, 0x13, 0x24, 0x35, 0x46, 0x57}));
    EXPECT_EQ((KyID{0xFFFFFFFF, 0xFFFF, 0x8000, {255, 254, 253, 252, 251, 250, 249, 248}}).Hash(),
              slowly({0xFFFFFFFF, 0xFFFF, 0x8000, 255, 254, 253, 252, 251, 250, 249, 248}));
    EXPECT_EQ(std::hash<KyID>()(kSample), kSample.Hash());
}

TEST(KyIDTest, GeneratedIDsAreRandomOnesThatDifferAmongThreads)
{
    constexpr int count = 2000;
    std::vector<KyID> ids[2];
    const auto generate = [](std::vector<KyID> &into) {
        for (int i = 0; i < count; ++i)
            into.push_back(KyID::Generate());
    };
    std::thread first(generate, std::ref(ids[0]));
    std::thread second(generate, std::ref(ids[1]));
    first.join();
    second.join();

    std::set<std::string> texts;
    KyID everSet;
    for (const std::vector<KyID> &list : ids) {
        for (const KyID &id : list) {
            const std::string text = id.ToNarrowString();
            texts.insert(text);
            EXPECT_EQ(text[14], '4');
            EXPECT_NE(std::string("89ab").find(text[19]), std::string::npos);
            everSet.Data1 |= id.Data1;
            everSet.Data2 |= id.Data2;
            everSet.Data3 |= id.Data3;
            for (int i = 0; i < 8; ++i)
                everSet.Data4[i] |= id.Data4[i];
        }
    }
    EXPECT_EQ(texts.size(), 2u * count);
    EXPECT_EQ(everSet.ToNarrowString(), "ffffffff-ffff-4fff-bfff-ffffffffffff");
}

} // namespace
