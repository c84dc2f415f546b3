// Files of results as simulators write them, whole, growing and damaged; the names in them;
// numbers.
#include <cmath>
#include <string>
#include <vector>

#include "results/engineering.h"
#include "results/names.h"
#include "results/overview.h"
#include "results/raw_file.h"
#include "tests/support/raw_results.h"
#include "tests/support/scratch_directory.h"

namespace {

std::string single_bytes(std::initializer_list<float> numbers) {
  std::string bytes;
  for (const float number : numbers) {
    bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
  }
  return bytes;
}
std::string wide(const std::string& text) {
  std::string bytes;
  for (const char c : text) bytes.append({c, '\0'});
  return bytes;
}
const std::vector<std::string> time_and_out{"time\ttime", "v(out)\tvoltage"};

class Results : public ::testing::Test {
 protected:
  std::string write(const std::string& bytes) {
    directory_.write("a.raw", bytes);
    return path();
  }
  std::string path() const { return directory_.file("a.raw").string(); }
  std::string open(const std::string& bytes) {
    const std::string fault = file_.open(write(bytes));
    const auto name = fault.find(path());
    return name == 0 ? fault.substr(path().size()) : fault;
  }
  rs_value_t at(const rs_plot_t& plot, double x, std::uint32_t variable) const {
    rs_place_t place;
    rs_value_t value{std::nan("")};
    if (rs_find(file_, plot, x, place))
      rs_values_at(file_, plot, place, {&variable, 1}, {&value, 1});
    return value;
  }
  const rs_plot_t& plot(std::size_t number) const { return file_.plots().at(number - 1); }

  scratch_directory directory_;
  rs_file_t file_;
};

TEST_F(Results, AValueBetweenTwoPointsLiesOnTheLineAndNoneBeyondTheEnds) {
  const std::string rows = double_bytes({0, 1, 2e-9, 5, 2e-9, 7, 4e-9, 3});
  ASSERT_EQ(open(raw_header("Transient Analysis", "real", "4", time_and_out) + rows), "");
  EXPECT_EQ(at(plot(1), 1e-9, 1).re, 3);
  EXPECT_EQ(at(plot(1), 3e-9, 1).re, 5);
  EXPECT_EQ(at(plot(1), 4e-9, 1).re, 3);
  EXPECT_EQ(at(plot(1), 0, 1).re, 1);
  EXPECT_TRUE(std::isnan(at(plot(1), 4.1e-9, 1).re));
  EXPECT_TRUE(std::isnan(at(plot(1), -1e-9, 1).re));
  EXPECT_TRUE(std::isnan(at(plot(1), std::nan(""), 1).re));
}

TEST_F(Results, RowsOfAFileThatStillGrowsAreCountedByItsSize) {
  const std::string head = raw_header("Transient Analysis", "real", "0       ", time_and_out);
  ASSERT_EQ(open(head), "");
  EXPECT_EQ(plot(1).nb_rows, 0U);
  const std::string rows = double_bytes({0, 1, 1, 2, 2, 3});
  EXPECT_FALSE(file_.has_changed());
  write(head + rows.substr(0, 40));  // the third row is being written
  EXPECT_TRUE(file_.has_changed());
  ASSERT_EQ(file_.open(path()), "");
  EXPECT_EQ(plot(1).nb_rows, 2U);
  EXPECT_EQ(at(plot(1), 1, 1).re, 2);
  EXPECT_TRUE(file_.faults().empty());
  // A header that is still being written is said to be so, and is no fault of what is there.
  EXPECT_EQ(open(head.substr(0, 70)), ": its header is not whole");
}

TEST_F(Results, PlotsFollowOneAnotherInEitherForm) {
  const std::string op =
      raw_header("Operating Point", "real", "1", {"v(a)\tvoltage", "i(v1)\tcurrent"});
  const std::string ac =
      raw_header("AC Analysis", "complex", "2", {"frequency\tfrequency\tgrid=3", "v(a)\tvoltage"},
                 "Values:\n") +
      " 0\t1e1,0.0\n\t1.5,-2.5\n\n 1\t1e2,0.0\n\t+nan,bad\n\n";
  const std::string empty = raw_header("Transient Analysis", "real", "0", time_and_out);
  const std::string dc = raw_header("DC transfer characteristic", "real", "4",
                                    {"v(v-sweep)\tvoltage", "v(out)\tvoltage"}) +
                         double_bytes({1, 10, 0, 20, 1, 30, 0, 40});
  ASSERT_EQ(open(op + double_bytes({1.5, -2}) + ac + empty + dc), "");
  ASSERT_EQ(file_.plots().size(), 5U);
  EXPECT_FALSE(plot(1).has_scale);
  const std::uint32_t both[] = {1, 0};
  rs_value_t values[2];
  file_.row(plot(1), 0, both, values);
  EXPECT_EQ(values[0].re, -2);
  EXPECT_EQ(values[1].re, 1.5);
  EXPECT_EQ(at(plot(2), 10, 1).im, -2.5);
  EXPECT_TRUE(std::isnan(at(plot(2), 100, 1).re));
  EXPECT_EQ(plot(3).nb_rows, 0U);
  // Nested sweeps are a plot each; their scale may fall.
  EXPECT_EQ(plot(4).nb_steps, 2);
  EXPECT_EQ(plot(4).step, 1);
  EXPECT_EQ(plot(5).step, 2);
  EXPECT_EQ(at(plot(4), 0.25, 1).re, 17.5);
  EXPECT_EQ(at(plot(5), 0.25, 1).re, 37.5);
  // One row has a scale where the first variable can be nothing else.
  for (const auto& [first, has_scale] :
       {std::pair{"time\ttime", true}, {"x\tfrequency", true}, {"v(a)\tvoltage", false}}) {
    ASSERT_EQ(open(raw_header("One", "real", "1", {first}) + double_bytes({3})), "");
    EXPECT_EQ(plot(1).has_scale, has_scale) << first;
    rs_overview_t overview;
    EXPECT_FALSE(overview.make(file_, plot(1), {}, [] { return true; }));
  }
}

TEST_F(Results, SweepsArePartedAndUnevenScalesAreSearched) {
  const std::vector<std::string> names{"v(v-sweep)\tvoltage", "v(out)\tvoltage"};
  const auto sweeps = [&](int count) {
    std::string rows;
    for (int i = 0; i < count; ++i) rows += "0 5 1\n0 5 2\n0 4 " + std::to_string(i) + "\n";
    return open(raw_header("DC", "real", std::to_string(3 * count), names, "Values:\n") + rows);
  };
  ASSERT_EQ(sweeps(3), "");
  ASSERT_EQ(file_.plots().size(), 3U);
  EXPECT_EQ(plot(1).nb_rows, 3U);
  EXPECT_EQ(plot(2).first_row, 3U);
  EXPECT_EQ(at(plot(3), 4, 1).re, 2);
  EXPECT_EQ(at(plot(2), 4.5, 1).re, 1.5);
  ASSERT_EQ(sweeps(10000), "");
  EXPECT_EQ(file_.plots().size(), 10000U);
  ASSERT_EQ(sweeps(10001), "");
  EXPECT_EQ(file_.plots().size(), 1U) << "too many are one";
  std::string bytes = raw_header("Transient Analysis", "real", "0", time_and_out);
  for (int i = 0; i < 60; ++i) bytes += double_bytes({std::exp2(i), std::exp2(i) + 1});
  ASSERT_EQ(open(bytes), "");
  for (int i = 0; i < 50; ++i)
    EXPECT_EQ(at(plot(1), 1.5 * std::exp2(i), 1).re, 1.5 * std::exp2(i) + 1);
}

TEST_F(Results, TheFormOfLtspice) {
  const auto ltspice = [](const std::string& plot, const std::string& flags,
                          const std::string& points) {
    const std::vector<std::string> names{"time\ttime", "V(n001)\tvoltage", "I(R1)\tdevice_current"};
    std::string text = raw_header(plot, flags, points, names);
    text.insert(
        text.find("Variables:\n\t"),
        "Offset:   1.0000000000000000e+000\nCommand: Linear Technology Corporation LTspice\n"
        "Backannotation: u1 1 2\n");
    return wide(text);
  };
  // Time in double, the rest in single precision; a minus before it marks points to leave out.
  ASSERT_EQ(open(ltspice("Transient Analysis", "real forward", "2") + double_bytes({0}) +
                 single_bytes({1, 2}) + double_bytes({-2}) + single_bytes({3, 4})),
            "");
  EXPECT_EQ(plot(1).header.simulator, rs_simulator::ltspice);
  EXPECT_EQ(file_.variables(plot(1)).at(2).name, "I(R1)");
  EXPECT_EQ(at(plot(1), 2, 2).re, 3);  // the scale begins at the offset
  EXPECT_EQ(at(plot(1), 3, 1).re, 3);
  // Variable by variable.
  ASSERT_EQ(open(ltspice("Transient Analysis", "real forward fastaccess", "2") +
                 double_bytes({0, 2}) + single_bytes({1, 3, 2, 4})),
            "");
  EXPECT_EQ(at(plot(1), 2, 2).re, 3);
  // Several runs; all in double precision, which the size shows.
  ASSERT_EQ(open(ltspice("Transient Analysis", "real forward stepped", "4") +
                 double_bytes({0, 1, 2, 2, 3, 4, 0, 5, 6, 2, 7, 8})),
            "");
  ASSERT_EQ(file_.plots().size(), 2U);
  EXPECT_EQ(at(plot(2), 2, 1).re, 6);
}

// More rows than are kept in mind at once, in each form; what is read row by row is what is asked
// for one by one.
TEST_F(Results, LongPlotsAreReadAlikeInEveryForm) {
  constexpr std::uint32_t points = 140000;
  std::string by_row, in_text, scale, by_variable;
  for (std::uint32_t i = 0; i < points; ++i) {
    by_row += double_bytes({i * 1.0, i * 2.0 + 1});
    in_text +=
        std::to_string(i) + "\t" + std::to_string(i) + "\n\t+" + std::to_string(2 * i + 1) + "\n";
    scale += double_bytes({i * 1.0});
    by_variable += single_bytes({static_cast<float>(2 * i + 1)});
  }
  const std::string count = std::to_string(points);
  const std::string files[] = {
      raw_header("Transient Analysis", "real", count, time_and_out) + by_row,
      raw_header("Transient Analysis", "real", "0", time_and_out, "Values:\n") + in_text +
          "140000 1",
      wide(raw_header("Transient Analysis", "real", count, time_and_out, "Values:\n") + in_text),
      raw_header("Transient Analysis", "real forward fastaccess", count, time_and_out) + scale +
          by_variable};
  for (const std::string& bytes : files) {
    ASSERT_EQ(open(bytes), "");
    ASSERT_EQ(plot(1).nb_rows, points);
    for (const auto& fault : file_.faults()) ADD_FAILURE() << fault;
    constexpr std::uint32_t first = 20000, both[] = {1, 0};
    rs_row_reader_t reader(file_, plot(1), first, both);
    rs_value_t values[2];
    bool same = true;
    for (std::uint32_t row = first; row < points; ++row) {
      reader.next(values);
      same = same && values[0].re == 2.0 * row + 1 && values[1].re == row && values[1].im == 0;
    }
    EXPECT_TRUE(same);
    for (const std::uint32_t row : {0U, 65535U, 65536U, 131073U, points - 1}) {
      file_.row(plot(1), row, both, values);
      EXPECT_EQ(values[0].re, 2.0 * row + 1);
      EXPECT_EQ(at(plot(1), row, 1).re, 2.0 * row + 1);
    }
    rs_overview_t overview;
    ASSERT_TRUE(overview.make(file_, plot(1), both));
    EXPECT_EQ(overview.whole(0).low, 1);
    EXPECT_GE(overview.whole(0).high, 2.0 * points - 1);
    const auto columns = overview.columns(std::vector<double>{-1, 0.5, 100.5, 70000, 139999.5});
    const double lows[] = {1, 2, 129, 139905}, highs[] = {2, 202, 140031, 279999};
    for (std::size_t i = 0; i < 4; ++i) {
      EXPECT_EQ(columns[0][i].low, lows[i]) << i;
      EXPECT_EQ(columns[0][i].high, highs[i]) << i;
    }
    static int asked;
    asked = 0;
    EXPECT_FALSE(overview.make(file_, plot(1), both, [] { return ++asked == 3; }));
  }
  EXPECT_EQ(open(files[3].substr(0, files[3].size() - 1)), "");
  EXPECT_EQ(plot(1).nb_rows, 0U) << "by variable all is elsewhere";
}

TEST_F(Results, ComplexValuesAreShownByTheirSize) {
  const std::vector<std::string> names{"frequency\tfrequency", "v(a)\tvoltage"};
  ASSERT_EQ(open(raw_header("AC Analysis", "complex double", "3", names) +
                 double_bytes({30, 0, 3, 4, 20, 0, 0, -1, 10, 0, 6, 8})),
            "");
  EXPECT_EQ(at(plot(1), 25, 1).re, 1.5);
  EXPECT_EQ(at(plot(1), 25, 1).im, 1.5);
  EXPECT_EQ(at(plot(1), 10, 1).im, 8);
  rs_overview_t overview;
  constexpr std::uint32_t first = 1;
  ASSERT_TRUE(overview.make(file_, plot(1), {&first, 1}));
  const auto falling = overview.columns(std::vector<double>{31, 25, 9})[0];
  EXPECT_EQ(falling[0].high, 5);
  EXPECT_EQ(falling[1].low, 1);
  EXPECT_EQ(falling[1].high, 10);
}

TEST_F(Results, HeadersOfOldAndNewWriters) {
  const std::string text =
      raw_header("Operating Point", "real", "1", {"a b + c\tvoltage", "R1\tx"});
  const auto opened = [&](std::string_view from, std::string_view to, bool is_wide = false) {
    std::string bytes = text;
    bytes.replace(bytes.find(from), from.size(), to);
    const std::string fault =
        open((is_wide ? "\xff\xfe" + wide(bytes) : bytes) + double_bytes({5, 7}));
    if (!fault.empty()) return fault;
    std::string said(rs_simulator_name(plot(1).header.simulator));
    for (const auto& variable : file_.variables(plot(1)))
      said += "|" + variable.name + "|" + variable.type;
    return said;
  };
  EXPECT_EQ(opened("Date", "Command: XYCE\nDate"), "Xyce|a b + c|voltage|R1|x");
  EXPECT_EQ(opened("Date", "Version: ngspice-42\nDate"), "ngspice|a b + c|voltage|R1|x");
  EXPECT_EQ(opened("Date", "Command: LTspice XVII\nDate"), "LTspice|a b + c|voltage|R1|x");
  EXPECT_EQ(opened("a b + c\tvoltage", "  v(a) voltage dims=1"), "ngspice|v(a)|voltage|R1|x");
  EXPECT_EQ(opened("R1", "I(R)"), "Xyce|a b + c|voltage|I(R)|x");
  EXPECT_EQ(opened("R1", "R(1)"), "SPICE|a b + c|voltage|R(1)|x");
  EXPECT_EQ(opened("today", "today\r\n \r", true), "LTspice|a b + c|voltage|R1|x");
  EXPECT_EQ(opened("Date:", "Offset: x\nDate:"), ": line 2: no number");
  EXPECT_EQ(opened("Date:", "Date"), ": line 2: no line of a header");
  EXPECT_EQ(opened("Variables:\n", "Variables: a\n"), ": line 7: no variable begins here");
  EXPECT_EQ(opened("Variables:\n", "Binary:\n"), ": line 7: values without variables");
  EXPECT_EQ(opened("today", std::string(70000, 'x'), true), ": line 2: a line of no header");
  // Letters beyond ASCII of two bytes each.
  const std::string micro = wide(text.substr(0, text.find("a b"))) +
                            std::string("\xb5\0\x26\x21\x80\0\xff\x07\0\x08", 10) +
                            wide(text.substr(text.find("\tvoltage")));
  ASSERT_EQ(open(micro + double_bytes({5, 7})), "");
  EXPECT_EQ(file_.variables(plot(1)).at(0).name, "\u00b5\u2126\u0080\u07ff\u0800");
  // All numbers of LTspice in one precision, as the size of the file says.
  const auto first = [&](const std::string& numbers) {
    EXPECT_EQ(open(wide(text) + numbers), "");
    rs_value_t value;
    const std::uint32_t second = 1;
    file_.row(plot(1), 0, {&second, 1}, {&value, 1});
    return value.re;
  };
  EXPECT_EQ(first(single_bytes({5, 7})), 7);
  EXPECT_EQ(first(double_bytes({5, 7})), 7);
  EXPECT_EQ(first(double_bytes({5}) + single_bytes({7})), 7);
}

TEST_F(Results, AFileThatIsNoSuchOrCutSaysSo) {
  EXPECT_EQ(open(""), ": is empty");
  EXPECT_EQ(open("Netlist of a design\nR1 a b 1k\n"), ": is no file of results");
  EXPECT_EQ(open(std::string(200000, 'x')), ": line 1: a line of no header");
  EXPECT_EQ(file_.open(directory_.path().string()),
            directory_.path().string() + ": Is a directory");
  const std::string whole = raw_header("Transient Analysis", "real", "2", time_and_out);
  const auto with = [&](std::string_view from, std::string_view to) {
    std::string text = whole;
    return text.replace(text.find(from), from.size(), to);
  };
  EXPECT_EQ(open(with("s: 2\nNo", "s: 99999999999999999999\nNo")), ": line 5: no number");
  EXPECT_EQ(open(with("s: 2\nNo", "s: -2\nNo")), ": line 5: no number");
  EXPECT_EQ(open(with("s: 2\nNo", "s: 0\nNo")), ": line 7: no variables");
  EXPECT_EQ(open(with("s: 2\nNo", "s: 3\nNo")), ": line 10: not as many variables as announced");
  EXPECT_EQ(open(with("s: 2\nNo", "s: 1\nNo")), ": line 9: more variables than announced");
  // Fewer points than announced: what is there is read, and said.
  ASSERT_EQ(open(with("Points: 2", "Points: 18446744073709551615") + double_bytes({0, 1})), "");
  EXPECT_EQ(plot(1).nb_rows, 1U);
  ASSERT_EQ(file_.faults().size(), 1U);
  EXPECT_EQ(file_.faults()[0], "plot 1: 1 of 18446744073709551615 points are there");
  ASSERT_EQ(open(whole + double_bytes({0, 1, 2, 3}) + "and so on\n"), "");
  EXPECT_EQ(file_.faults().at(0), "after plot 1: bytes that belong to no plot");
  const std::string more = whole + double_bytes({0, 1, 2, 3}) + whole.substr(0, 60);
  ASSERT_EQ(open(more), "");
  EXPECT_EQ(file_.faults().at(0), "after plot 1: the last header is not whole");
  ASSERT_EQ(open(more + "\nNo. Points: x\n"), "");
  EXPECT_EQ(file_.faults().at(0), "after plot 1: line 4: no line of a header");
  std::filesystem::remove(path());
  EXPECT_TRUE(file_.has_changed());
}

// The first point, and the last of four at a time: what is between is found again by columns.
TEST_F(Results, ColumnsHoldTheLeastAndTheGreatestValue) {
  std::string bytes = raw_header("Transient Analysis", "real", "0", time_and_out);
  constexpr int points = 100000;
  for (int i = 0; i < points; ++i) {
    bytes += double_bytes({i * 1e-9, i == 61234 ? 50.0 : (i == 777 ? -9.0 : i % 2 * 1.0)});
  }
  ASSERT_EQ(open(bytes), "");
  rs_overview_t overview;
  const std::uint32_t out = 1;
  for (int times = 0; times < 2; ++times) ASSERT_TRUE(overview.make(file_, plot(1), {&out, 1}));
  EXPECT_EQ(overview.whole(0).low, -9);
  EXPECT_EQ(overview.whole(0).high, 50);
  const auto columns = [&](double from, double to, int count) {
    std::vector<double> edges;
    for (int i = 0; i <= count; ++i) edges.push_back(from + (to - from) * i / count);
    return overview.columns(edges)[0];
  };
  const auto whole = columns(0, 100e-6, 100);
  for (std::size_t i = 0; i < whole.size(); ++i) {
    EXPECT_EQ(whole[i].high, i == 61 ? 50 : 1) << i;
    EXPECT_EQ(whole[i].low, i == 0 ? -9 : 0) << i;
  }
  // Between two points: the line. Outside: nothing.
  const auto near = columns(61233.5e-9, 61234.5e-9, 2);
  EXPECT_NEAR(near[0].low, 25.5, 1e-6);
  EXPECT_NEAR(near[0].high, 50, 1e-6);
  EXPECT_TRUE(columns(101e-6, 102e-6, 4)[2].is_empty());
}

TEST(ResultNames, OfEverySimulatorSayTheSame) {
  struct case_t {
    rs_variable_t variable;
    std::string said;
  };
  const case_t cases[] = {
      {{"v(r:x2:x)", "voltage"}, "net r:x2:x"},
      {{"V(XR:X2:X)", "voltage"}, "net XR:X2:X"},
      {{"out", "voltage"}, "net out"},
      {{"a[5]", "voltage"}, "net a[5]"},
      {{"v(a[5])", "voltage"}, "net a[5]"},
      {{"i(vsup)", "current"}, "device vsup i"},
      {{"vsup#branch", "current"}, "device vsup i"},
      {{"@m.xr.x2.mp1[gm]", "admittance"}, "device m.xr.x2.mp1 gm"},
      {{"i(@r1[i])", "current"}, "device r1 i"},
      {{"v(@m.x1.m1[VTH])", "voltage"}, "device m.x1.m1 vth"},
      {{"Id(M1)", "device_current"}, "device M1 id"},
      {{"Ix(u1:vcc)", "subckt_current"}, "device u1:vcc ix"},
      {{"N(M:XR:X2:MP1:GM)", "voltage"}, "device M:XR:X2:MP1:GM "},
      {{"W(R1)", "power"}, "device R1 p"},
      {{"time", "time"}, "other"},
      {{"v(v-sweep)", "voltage"}, "other"},
      {{"{V(A)-V(B)}", "expression"}, "other"},
      {{"v(a,b)", "voltage"}, "other"},
      {{"", ""}, "other"},
      {{"V(temp-sweep)", "x"}, "other"},
      {{"v(frequency)", "x"}, "other"},
      {{"p(r1)", "power"}, "device r1 p"},
      {{"Ibe(Q1)", "x"}, "device Q1 ibe"},
      {{"Ibex(Q1)", "x"}, "other"},
      {{"q(c1)", "x"}, "other"},
      {{"(a)", "voltage"}, "other"},
      {{"v(a", "voltage"}, "net v(a"},
      {{"@m1", "x"}, "device m1 "},
      {{"@m1[gm", "x"}, "device m1[gm "},
      {{"a b", "voltage"}, "net a b"},
      {{"a+b", "current"}, "other"},
      {{"r1", "Current"}, "device r1 i"},
      {{"r1", "power"}, "other"},
  };
  for (const auto& [variable, said] : cases) {
    const rs_name_t name = rs_read_name(variable);
    const std::string what = name.meaning == rs_meaning::net ? "net " + name.path
                             : name.meaning == rs_meaning::device
                                 ? "device " + name.path + " " + name.parameter
                                 : "other";
    EXPECT_EQ(what, said) << variable.name;
  }
  EXPECT_EQ(rs_path_names("/m.xr::x2#d"), (std::vector<std::string_view>{"m", "xr", "x2", "d"}));
  for (const auto& [name, unit] : {std::pair{"Voltage", "V"},
                                   {"frequency", "Hz"},
                                   {"impedance", "Ohm"},
                                   {"p", "W"},
                                   {"id", "A"},
                                   {"cd", "A"},
                                   {"vth", "V"},
                                   {"von", "V"},
                                   {"gm", "S"},
                                   {"r", "Ohm"},
                                   {"rout", "Ohm"},
                                   {"rx", ""},
                                   {"cgs", "F"},
                                   {"cbd", "F"},
                                   {"cdb", "F"},
                                   {"cx", ""},
                                   {"x", ""}})
    EXPECT_EQ(rs_unit_of(name), unit) << name;
  for (const auto& [name, one] :
       {std::pair{"IDS", "id"}, {"vt", "vth"}, {"Vdss", "vdsat"}, {"GM", "gm"}})
    EXPECT_EQ(rs_parameter_name(name), one);
}

TEST(Engineering, NumbersAreWrittenAndReadAsSimulatorsDo) {
  EXPECT_EQ(rs_engineering(1.79998, 6, "V"), "1.79998 V");
  EXPECT_EQ(rs_engineering(1.8, 4), "1.8");
  EXPECT_EQ(rs_engineering(-0.0114, 4, "V"), "-11.4 mV");
  EXPECT_EQ(rs_engineering(999.96, 4), "1k");
  EXPECT_EQ(rs_engineering(1.5e6, 4), "1.5meg");
  EXPECT_EQ(rs_engineering(1.5e6, 4, "Hz"), "1.5 MHz");
  EXPECT_EQ(rs_engineering(0, 4, "A"), "0 A");
  EXPECT_EQ(rs_engineering(1e-30, 4), "1e-30");
  EXPECT_EQ(rs_engineering(-std::nan(""), 4, "V"), "nan V");
  EXPECT_EQ(rs_engineering(INFINITY, 4, "V") + rs_engineering(-INFINITY, 4), "inf V-inf");
  EXPECT_EQ(rs_engineering(123456, 2), "123k");
  EXPECT_EQ(rs_engineering(1e15, 4, "V"), "1e+15 V");
  std::string all;
  for (int power = -18; power <= 12; power += 3) {
    const double number = std::stod("2e" + std::to_string(power));
    all += rs_engineering(number, 3, "A") + "," + rs_engineering(number * 10, 3) + " ";
    EXPECT_EQ(rs_read_number(rs_engineering(number, 3)), number) << power;
  }
  EXPECT_EQ(
      all,
      "2 aA,20a 2 fA,20f 2 pA,20p 2 nA,20n 2 uA,20u 2 mA,20m 2 A,20 2 kA,20k 2 MA,20meg 2 GA,20g "
      "2 TA,20t ");
  EXPECT_EQ(rs_read_number("+5KHz"), 5000);
  EXPECT_EQ(rs_read_number("1M"), 1e-3);
  for (const char* text : {"5HZ", "5z", "5Z", "5Ya"}) EXPECT_EQ(rs_read_number(text), 5) << text;
  for (const char* text : {"5[", "5@", "5`", "5{"}) EXPECT_FALSE(rs_read_number(text)) << text;
  EXPECT_FALSE(rs_read_number("9e300meg9"));
  EXPECT_FALSE(rs_read_number("1e305meg"));
  for (const double number : {58e-9, 1e6, -2.5e-3, 1.0, 4.7e12}) {
    EXPECT_NEAR(rs_read_number(rs_engineering(number, 6)).value_or(0) / number, 1, 1e-12);
  }
  EXPECT_EQ(rs_read_number("1MEG"), 1e6);
  EXPECT_EQ(rs_read_number("100ns"), 100e-9);  // the end of a scale is on it
  EXPECT_EQ(rs_read_number("0.7V"), 0.7);
  for (const char* text : {"", "n", "1e999", "1n5", "1,5", "nan", "1 n"}) {
    EXPECT_FALSE(rs_read_number(text)) << text;
  }
}

}  // namespace
