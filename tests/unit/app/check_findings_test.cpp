// What CHEck DESign leaves: its findings in every form, the answers of its commands, waivers.
#include <algorithm>
#include <ctime>
#include <filesystem>

#include "app/check/findings/findings_file.h"
#include "app/check/findings/waivers.h"
#include "app/language/answers.h"
#include "app/session/batch_json.h"
#include "tests/support/checked_design.h"

namespace {

TEST(CheckDesign, WritesTheFindingsForOthersToRead) {
  using enum kv_severity;
  const kv_findings_t findings = {
      {kv_rule::pin_open, error, "/B1/I", "", "a b/Zz09-._~\xe9.gx_1", 7, "\"<&>\x7f\x1f ~"},
      {kv_rule::pin_open, error, "/B2/I", "", "", 8, "known", true},
      {kv_rule::pin_unused, warning, "/<&>", "", "top", 9, "doubtful"}};
  const std::string sarif = kv_findings_sarif(findings);
  EXPECT_NE(
      sarif.find("\"rules\": [\n     {\"id\": \"class-twice\", \"shortDescription\": {\"text\": "
                 "\"more than one CLASS on an instance\"}},\n     {\"id\": \"port-name\""),
      sarif.npos);
  EXPECT_EQ(sarif.substr(sarif.find("   \"results\"")), R"(   "results": [
    {"ruleId": "pin-open", "level": "error", "message": {"text": "\"<&>\u007f\u001f ~"}, "locations": [{"physicalLocation": {"artifactLocation": {"uri": "a%20b/Zz09-._~%E9.gx_1"}}, "logicalLocations": [{"fullyQualifiedName": "/B1/I"}]}]},
    {"ruleId": "pin-open", "level": "error", "message": {"text": "known"}, "locations": [{"logicalLocations": [{"fullyQualifiedName": "/B2/I"}]}], "suppressions": [{"kind": "external"}]},
    {"ruleId": "pin-unused", "level": "warning", "message": {"text": "doubtful"}, "locations": [{"physicalLocation": {"artifactLocation": {"uri": "top"}}, "logicalLocations": [{"fullyQualifiedName": "/<&>"}]}]}]}]}
)");
  auto severities = kv_default_severities();
  severities.fill(off);
  severities[static_cast<std::size_t>(kv_rule::run)] = error;
  severities[static_cast<std::size_t>(kv_rule::pin_open)] = error;
  EXPECT_EQ(kv_findings_junit(findings, severities), R"(<?xml version="1.0" encoding="UTF-8"?>
<testsuites>
 <testsuite name="CHEck DESign" tests="4" failures="1" errors="0" skipped="1">
  <testcase classname="pin-open" name="/B1/I"><failure message="&quot;&lt;&amp;&gt;?? ~"/></testcase>
  <testcase classname="pin-open" name="/B2/I"><skipped message="waived: known"/></testcase>
  <testcase classname="pin-unused" name="/&lt;&amp;&gt;"><system-out>warning: doubtful</system-out></testcase>
  <testcase classname="run" name="another error that RUN reports"/>
 </testsuite>
</testsuites>
)");
  checked c("sheet top\n part B1 buf 4,4\n");
  const auto written = [&](const std::string& command) {
    c.s.run(command);
    std::string names;
    for (const auto* name : {"findings.json", "findings.sarif", "findings.xml"})
      if (std::filesystem::remove(std::string("top/") + name)) names += std::string(name) + " ";
    return names;
  };
  EXPECT_EQ(written("check design"), "findings.json ");
  EXPECT_EQ(written("check design sarif"), "findings.json findings.sarif ");
  EXPECT_EQ(written("check design jun"), "findings.json findings.xml ");
  EXPECT_EQ(written("check design jun sar"), "findings.json findings.sarif findings.xml ");
  EXPECT_EQ(written("check design jun x"), "");
  std::filesystem::create_directory("top/findings.json");
  const auto lines = c.s.run("check design sarif junit");
  EXPECT_EQ(lines_t(lines.end() - 2, lines.end()),
            (lines_t{"# !! Error : findings.json not written : Is a directory",
                     " CHEck  DESign sarif junit "}));
}

// What a program is given besides the lines.
TEST(CheckDesign, EachAnswerIsAlsoData) {
  checked c("sheet top\n part B1 buf 4,4\n part B1 res 4,8\n");
  const auto records = [&](const char* command) {
    kv_begin_json();
    c.s.run(command);
    const std::string json = kv_end_json_answer("", false);
    kv_set_record_taker(nullptr);
    return json.substr(json.find("\"records\""));
  };
  EXPECT_EQ(records("check sheet"),
            R"("records": [{"type": "finding", "severity": "error", "rule": "inst-same-name", )"
            R"("object_id": 39, "words": "INSTANCE with same name  : \"B1\""}, )"
            R"({"type": "counts", "errors": 1, "warnings": 0}]})"
            "\n");
  const std::string all = records("check design");
  const std::string second =
      R"({"type": "finding", "number": 2, "severity": "error", "rule": "pin-open", )"
      R"("path": "/B1/I", "sheet": "top/sheet.gx_1", "object_id": 37, )"
      R"("words": "the pin is on no net", "waived": false})";
  EXPECT_NE(all.find("}, " + second + ", {"), all.npos) << all;
  EXPECT_TRUE(all.ends_with(R"(, {"type": "counts", "errors": 2, "warnings": 3, "waived": 0}]})"
                            "\n"))
      << all;
  EXPECT_EQ(records("show finding 2"), R"("records": [)" + second + "]}\n");
  EXPECT_TRUE(records("rule").starts_with(
      R"("records": [{"type": "rule", "name": "class-twice", "severity": "error", )"
      R"("meaning": "more than one CLASS on an instance"}, {"type": "rule", )"));
}

TEST(CheckDesign, TheListShowsItsAnswersWhole) {
  const std::string name(30, 'n');
  checked c("symbol blk\n pin I 0,0 IN\nsheet blk\n port I in 0,0\n part " + name +
            " buf 4,4\n net " + name +
            "\n  wire I 1,0\n"
            "sheet top\n part " +
            name + " blk 4,4\n part " + name + "x blk 40,4\n");
  int lines = 0;
  for (const std::string command : {"rule", "check design", "show finding 1", "next finding",
                                    "find path /*", "list hierarchy", "find path /nosuch"}) {
    for (const auto& line : c.s.run(command)) {
      EXPECT_LE(line.size(), gx_list_columns) << line;
      ++lines;
    }
  }
  EXPECT_GT(lines, 60);
  // Broken at words; what goes on is marked.
  const auto lines_of_first = c.s.run("check design");
  EXPECT_EQ(lines_of_first[1].substr(0, 2), "# ");
  EXPECT_EQ(lines_of_first[2].substr(0, 5), "#    ");
}

TEST(CheckDesign, RefusesWhatItCannotDo) {
  design_session s("sheet top\n");
  kv_sext = kv_defref_exp_rec_t{};
  EXPECT_EQ(s.run("check design"),
            (lines_t{"# CHEck  DESign  ", "# !! Error : No property to define the PRIMITIVE ? "}));
  EXPECT_EQ(s.run("check design now"),
            (lines_t{"# CHEck  DESign  now ", "# !! Error :  3rd parameter incorrect ? "}));
  for (const auto& [line, keyword] :
       {std::pair{"show finding", "# SHOw FINding "}, {"nex fin", "# NEXt FINding "}}) {
    EXPECT_EQ(s.run(line), (lines_t{keyword, "# !! Error : No findings of CHEck DESign ? "}));
  }
  s.run("primitive CLASS;check design");
  EXPECT_EQ(read_file("top/findings.json"), "[\n]\n");
  EXPECT_EQ(s.run("waive finding 1 so"),
            (lines_t{"# WAIve FINding 1 so ", "# !! Warning : CHEck DESign found nothing "}));
  EXPECT_EQ(s.run("rule nosuch error")[1], "# !! Error :  2nd parameter incorrect ? ");
  EXPECT_EQ(s.run("rule no-driver maybe")[1], "# !! Error :  3rd parameter incorrect ? ");
  EXPECT_EQ(std::ranges::count_if(s.run("rule"), [](const auto& line) { return line[2] != ' '; }),
            kv_rule_count + 1);
  kv_pext.arrayof_file[0].file_index = 0;
  EXPECT_EQ(s.run("check design")[1], "# !! Error : No Valid current sheet ? : ");
}

TEST(CheckDesign, WaivedFindingsAreCountedApart) {
  checked c("sheet top\n part B1 buf 4,4\n part B2 buf 4,8\n");
  const lines_t all = {"pin-open /B1/I", "pin-open /B2/I", "pin-unused /B1/O", "pin-unused /B2/O"};
  EXPECT_EQ(c.findings(), all);
  c.s.run("show finding 1");
  EXPECT_EQ(c.s.run("waive finding 2 'say \"so\"' yet"),
            lines_t{" WAIve FINding 2 'say \"so\"' yet "});
  EXPECT_EQ(c.s.run("next finding").back(), " NEXt FINding 3 ");
  for (const char* number : {"0", "5", "x"})
    EXPECT_EQ(c.s.run("waive finding " + std::string(number) + " x")[1],
              "# !! Error :  3rd parameter incorrect ? ");
  EXPECT_EQ(c.s.run("show finding 4").back(), " SHOw FINding 4 ");
  EXPECT_EQ(c.s.run("waive finding 2 x")[1], "# !! Warning : This finding is waived ");
  const auto waivers = kv_read_waivers("top");
  ASSERT_EQ(waivers.waivers.size(), 1U);
  EXPECT_EQ(waivers.waivers[0].reason, "say \"so\" yet");
  char today[20];
  const std::time_t now = std::time(nullptr);
  std::strftime(today, sizeof today, "%Y-%m-%d", std::localtime(&now));
  EXPECT_EQ(waivers.waivers[0].date, today);

  c.s.directory().write("top/waivers", read_file("top/waivers") +
                                           "pin-unused \"/b*\" \"\" 2026-01-02\n" +
                                           "single-pin /N \"gone\" 2026-01-02");
  EXPECT_EQ(c.s.run("rule pin-open warning"), lines_t{" RULe pin-open warning "});
  const auto lines = c.s.run("check design");
  EXPECT_EQ(lines[1], "# !! Warning : waivers:3 : matches no finding :");
  EXPECT_EQ(lines[2], "#    single-pin /N");
  EXPECT_EQ(lines[3], "# 1 Warning pin-open /B1/I : the pin is on no net");
  EXPECT_TRUE(lines[4].starts_with("# 2 Waived pin-open /B2/I"));
  EXPECT_EQ(lines_t(lines.end() - 4, lines.end() - 1),
            (lines_t{"# CHEck  DESign > nb_error    = 0 ", "# CHEck  DESign > nb_warning  = 1 ",
                     "# CHEck  DESign > nb_waived   = 3 "}));
  // A rule that is off finds nothing, and its waivers are not reported.
  EXPECT_EQ(
      c.s.run("rule pin-open off;rule single-pin off;rule pin-unused off;check design").size(), 8U);

  // The file is replaced, not written through; one that cannot be read is told.
  std::filesystem::rename("top/waivers", "elsewhere");
  std::filesystem::create_symlink("../elsewhere", "top/waivers");
  const auto before = read_file("elsewhere");
  c.s.run("rule pin-open error;check design;waive finding 1 later");
  EXPECT_EQ(read_file("elsewhere"), before);
  EXPECT_EQ(kv_read_waivers("top").waivers.size(), 4U);
  const auto padded = [&](std::size_t more) {
    c.s.directory().write("top/waivers", std::string(more, '\n'));
    const auto said = kv_read_waivers("top").faults;
    return said.empty() ? kv_add_waiver("top", waivers.waivers[0]) : said[0];
  };
  EXPECT_EQ(padded((16U << 20) - 1), "");
  EXPECT_EQ(padded(16U << 20), "larger than 16 MB");
  EXPECT_EQ(padded((16U << 20) + 1), "waivers : larger than 16 MB");
  std::filesystem::remove("top/waivers");
  std::filesystem::create_directory("top/waivers");
  EXPECT_EQ(c.s.run("check design")[1], "# !! Warning : waivers : Is a directory");
}

TEST(Waivers, LinesThatAreNoneAreTold) {
  const std::pair<std::string, std::string> cases[] = {
      {"nosuch \"/A\" \"r\" 2026-01-01", "unknown rule : nosuch"},
      {"single-pin", "not : rule \"path\" \"reason\" date"},
      {"single-pin \"/A \"r\" 2026-01-01", "not : rule \"path\" \"reason\" date"},
      {"single-pin \"/A", "not : rule \"path\" \"reason\" date"},
      {"single-pin A \"r\" 2026-01-01", "no path : A"},
      {"single-pin /A \"r\" 26-1-1", "no date : 26-1-1"},
      {"single-pin /A \"r\" 2026-01-01 x", "text after the date"},
      {std::string("single-pin /A\0 r 2026-01-01", 27),
       "contains a control or non-ASCII character"},
  };
  for (const auto& [line, fault] : cases) {
    const auto read = kv_parse_waivers("\n  # one\n" + line);
    EXPECT_TRUE(read.waivers.empty()) << line;
    ASSERT_EQ(read.faults.size(), 1U) << line;
    EXPECT_EQ(read.faults[0], "waivers:3 : " + fault);
  }
  // What is written is read back.
  const kv_waiver_t waiver{kv_rule::single_pin, "/A \"b\"\\", "why \\ \"not\"", "2026-11-25"};
  const auto read = kv_parse_waivers(kv_waiver_line(waiver) + "\r\n");
  ASSERT_EQ(read.waivers.size(), 1U);
  EXPECT_EQ(read.waivers[0].path, waiver.path);
  EXPECT_EQ(read.waivers[0].reason, waiver.reason);
  EXPECT_EQ(read.waivers[0].date, waiver.date);
  EXPECT_EQ(read.waivers[0].rule, waiver.rule);
}

}  // namespace
