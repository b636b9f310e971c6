#include "Quorvel/Core/LSAppInfoOutput.h"

#include "Tests/Support/Matchers.h"

namespace quorvel::test {

namespace {

/// A record under the header, if it is one.
std::vector<AppRecord> recordUnder(const std::string& header)
{
    return parseListOutput(header + "\nbundleID=\"b\" pid = 7");
}

std::optional<ProcessID> pidOn(const std::string& line)
{
    const auto records = parseListOutput("1) \"x\" ASN:1:\nbundleID=\"b\"\n" + line);
    return records.empty() ? std::nullopt : std::optional{records.front().pid};
}

}

TEST(LSAppInfoOutput, listKeepsWholeRecordsInOrderAndTheFirstOfEachProperty)
{
    const auto records = parseListOutput("bundleID=\"stray\" pid = 1\n"
                                         " 3) \"Mail\" ASN:0x0-0x2a02a: \n"
                                         "    bundleID=\"\"  bundleID=\"com.example.mail\"\n"
                                         "    bundleID=\"late\" pid = 431 type=\"x\" pid=9\n"
                                         " 4) \"No process\" ASN:0x0-0x5:\n    bundleID=\"gone\"\n"
                                         " 5) \"No bundle\" ASN:0x0-0x6:\n    pid = 5\r\n"
                                         "12) \"\" ASN:0x0-0x1-\"Chat\":\t\r\n"
                                         "\tpid=12\n\tbundleID=\"a b=:é\"");

    EXPECT_THAT(records,
        ElementsAre(AppRecord{"0x0-0x2a02a", "com.example.mail", ProcessID{431}},
            AppRecord{"0x0-0x1", "a b=:é", ProcessID{12}}));
}

TEST(LSAppInfoOutput, onlyAWholeLineIsAHeader)
{
    EXPECT_EQ(recordUnder("\t 07) \"a) b\"  ASN: x :").front().asn, " x ");
    for (auto* wrong : {"x 1) \"a\" ASN:1:", ") \"a\" ASN:1:", "1)\"a\" ASN:1:", "1) a ASN:1:",
             "1) \"a\" ASN:1", "1) \"a\" ASN::", "1) \"a\" ASN:1: x",
             "1) \"a\"ASN:1:", "1) \"a\"b\" ASN:1:", "1) \"a\" ASN:1-\"b:c\":", "1 ) \"a\" ASN:1:"})
        EXPECT_THAT(recordUnder(wrong), IsEmpty()) << wrong;
}

TEST(LSAppInfoOutput, aProcessIsANumberOfItsOwn)
{
    EXPECT_EQ(pidOn("x-pid\t=\t5, y"), ProcessID{5});
    EXPECT_EQ(pidOn("pid = none ppid = 4 pid pid =6"), ProcessID{6});
    for (auto* wrong : {"ppid = 4", "pid_ = 4", "pid = -4", "pid = 4x", "pid = 4_",
             "pid = ", "\xC3\xA9pid = 4", "pid = 99999999999 pid = 4"})
        EXPECT_EQ(pidOn(wrong), std::nullopt) << wrong;
}

TEST(LSAppInfoOutput, foundSerialsMatchThoseOfTheList)
{
    EXPECT_THAT(parseFindOutputASNs("found: ASN:0x0-0x2a02a-\"Mail\":ASN:0x0-0x1:\n"
                                    "ASN:: ASN: \n0x2 :, ASN:0x0-0x1:\nASN:cut off"),
        ElementsAre("0x0-0x1", "0x0-0x2a02a", "0x2"));
    EXPECT_THAT(parseFindOutputASNs("ASN:ASN:1:"), ElementsAre("ASN")) << "none overlap";
}

TEST(LSAppInfoOutput, errorCodeIsTheFirstNumberNamedSo)
{
    EXPECT_EQ(parseLSAppInfoErrorCode("failed err=-600, err=5"), -600);
    EXPECT_EQ(parseLSAppInfoErrorCode("err=0"), 0);
    for (auto* none : {"", "error 5", "err=", "err=x err=5", "err=-", "err=6-0", "err=--6",
             "err=99999999999999999999"})
        EXPECT_EQ(parseLSAppInfoErrorCode(none), std::nullopt) << none;
}

TEST(LSAppInfoOutput, bytesThatAreNoTextAreNothing)
{
    const std::string text = "a\xC2\x80\xE0\xA0\x80\xED\x9F\xBF\xF0\x90\x80\x80\xF4\x8F\xBF\xBF";
    EXPECT_EQ(decodedAsUTF8(text), text);
    for (std::string wrong :
        {"\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80",
            "\xF5\x80\x80\x80", "\xC3", "\xE2\x82", "\xC3\x41"})
        EXPECT_EQ(decodedAsUTF8("good " + wrong), "") << testing::PrintToString(wrong);
}

}
