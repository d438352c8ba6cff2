#include <marlet/foundation/KyID.h>

#include <gmock/gmock.h>

#include <set>
#include <stdexcept>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace
{

using kytl::KyID;

/// An ID whose groups have a leading zero each and whose bytes all differ.
constexpr KyID kSample = {0x01234567, 0x089A, 0x0BCD, {0x0E, 0xF1, 0x02, 0x13, 0x24, 0x35, 0x46, 0x57}};
constexpr char kSampleText[] = "01234567-089a-0bcd-0ef1-021324354657";

TEST(KyIDTest, IsWrittenInLowerCaseAndReadInEither)
{
    EXPECT_EQ(kSample.ToNarrowString(), kSampleText);
    EXPECT_EQ(kSample.ToWideString(), u"01234567-089a-0bcd-0ef1-021324354657");
    EXPECT_EQ(KyID::FromString(kSampleText), kSample);
    EXPECT_EQ(KyID::FromString(u"01234567-089A-0BCD-0EF1-021324354657"), kSample);
    EXPECT_TRUE(KyID::FromString("00000000-0000-0000-0000-000000000000").IsNull());
    EXPECT_FALSE((KyID{0, 0, 0, {0, 0, 0, 0, 0, 0, 0, 1}}).IsNull());
}

TEST(KyIDTest, RefusesAnyOtherText)
{
    const std::u16string texts[] = {u"",
                                    u"{01234567-089a-0bcd-0ef1-021324354657}",
                                    u"01234567-089a-0bcd-0ef1-02132435465",
                                    u"01234567-089a-0bcd-0ef1-0213243546570",
                                    u"01234567-089a-0bcd-0ef1-02132435465g",
                                    u"01234567+089a-0bcd-0ef1-021324354657",
                                    u"01234567-089a-0bcd-0ef1-02132435465\u0137",
                                    u"0123456789ab-0bcd-0ef1-0213-24354657"};
    for (const std::u16string &text : texts) {
        const std::string narrow = marlet::project::ToUtf8(text);
        const auto refusal = testing::ThrowsMessage<std::runtime_error>("Cannot construct KyID from string");
        EXPECT_THAT([&] { KyID::FromString(text); }, refusal) << narrow;
        EXPECT_THAT([&] { KyID::FromString(narrow); }, refusal) << narrow;
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
    EXPECT_EQ(std::hash<KyID>()(kSample), kSample.Hash());
}

TEST(KyIDTest, GeneratedIDsAreRandomOnesThatDifferAmongThreads)
{
    std::vector<KyID> ids[2];
    const auto generate = [&ids](int thread) {
        for (int i = 0; i < 2000; ++i)
            ids[thread].push_back(KyID::Generate());
    };
    std::thread other(generate, 1);
    generate(0);
    other.join();

    std::set<std::string> texts;
    std::string digits[36]; // those seen at each place
    for (const std::vector<KyID> &list : ids) {
        for (const KyID &id : list) {
            const std::string text = id.ToNarrowString();
            texts.insert(text);
            for (std::size_t i = 0; i < text.size(); ++i)
                if (digits[i].find(text[i]) == std::string::npos)
                    digits[i] += text[i];
        }
    }
    EXPECT_EQ(texts.size(), 4000u);
    for (std::size_t i = 0; i < 36; ++i)
        EXPECT_EQ(digits[i].size(), kSampleText[i] == '-' || i == 14 ? 1u : i == 19 ? 4u : 16u) << i;
    EXPECT_EQ(digits[14], "4");
    EXPECT_EQ(digits[19].find_first_not_of("89ab"), std::string::npos);
}

TEST(KyIDTest, AChildProcessMakesIDsOfItsOwn)
{
    KyID::Generate(); // so that the child is left a generator that has begun
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        fork(); // as does a child's child
        const KyID id = KyID::Generate();
        _exit(write(ends[1], &id, sizeof id) == sizeof id ? 0 : 1);
    }
    close(ends[1]);
    std::set<std::string> texts = {KyID::Generate().ToNarrowString()};
    KyID id;
    while (read(ends[0], &id, sizeof id) == sizeof id)
        texts.insert(id.ToNarrowString());
    close(ends[0]);
    waitpid(child, nullptr, 0);
    EXPECT_EQ(texts.size(), 3u);
}

} // namespace
