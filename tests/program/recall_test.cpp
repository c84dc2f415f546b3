// The command line under the hands of a user: lines come back by Up and Down, also in the next
// session.
#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <algorithm>

#include "platform/files.h"
#include "platform/timing.h"
#include "tests/program/interactive.h"

namespace {
class Recall : public Interactive {
 protected:
  Recall() { make_design(directory_, "sheet top\n page 8,4\n"); }
  // A session whose typed lines are kept in the test's directory.
  test_session& begin() {
    directory_.write("do", "define key au 'recall back';define key ad 'recall forward'\n");
    auto start = start_of({"top", "do"}, {"VELMORAN=/nowhere"});
    start.environment.push_back("XDG_STATE_HOME=" + (directory_.path() / "state").string());
    session_ = std::make_unique<test_session>(shared_display(), start);
    session_->wait_for_line("# End of DO ");
    session_->settle();
    point_at(in_edit);
    return *session_;
  }
  void end() {
    session().command("bye");
    expect_end();
  }
};

TEST_F(Recall, TypedLinesComeBackAndOutliveTheSession) {
  auto& s = begin();
  s.command("snap on");
  s.command("snap off");
  s.command("snap off");                 // once
  s.command("");                         // nothing
  s.key(XK_F12, test_session::control);  // a key is not typed
  s.wait_for_line(" DISplay ON ");
  s.type("grid o");
  s.key(XK_Up);
  s.key(XK_Up);
  s.type("\n");
  s.wait_for_line(" SNAp ON ");
  s.key(XK_Up);  // the newest is the line that came back
  s.key(XK_Up);
  s.key(XK_Up);
  s.key(XK_Up);  // there is none before
  s.key(XK_Down);
  s.type("\n");
  s.wait_for_line(" SNAp OFF ");
  s.type("grid o");
  s.key(XK_Up);
  s.key(XK_Down);
  s.key(XK_Down);
  s.type("n\n");  // what was begun is there again
  s.wait_for_line(" GRID ON ");
  end();

  auto& next = begin();
  next.key(XK_Up);  // bye
  next.key(XK_Up);
  next.type("\n");
  next.wait_for_line(" GRID ON ");
  end();
  std::string kept;
  ASSERT_TRUE(x_read_regular((directory_.path() / "state/kivo/typed_lines").string(), kept, 1000));
  EXPECT_EQ(kept, "snap on\nsnap off\nsnap on\nsnap off\ngrid on\nbye\ngrid on\nbye\n");
}

TEST_F(Recall, AnOddFileOfLinesIsReadForWhatItIs) {
  std::filesystem::create_directories(directory_.path() / "state/kivo");
  std::string lines = "snap on\n\x01\x02 control\n" + std::string(300, 'x') + "\n   \n";
  for (int i = 0; i < 2500; ++i) lines += "grid step 0." + std::to_string(i % 7 + 1) + "\n";
  directory_.write("state/kivo/typed_lines", lines + "snap off\nno line end");
  auto& s = begin();
  s.key(XK_Up);
  s.key(XK_Up);
  s.type("\n");
  s.wait_for_line(" SNAp OFF ");
  end();
  std::string kept;
  ASSERT_TRUE(
      x_read_regular((directory_.path() / "state/kivo/typed_lines").string(), kept, 100000));
  EXPECT_EQ(std::count(kept.begin(), kept.end(), '\n'), 1000 + 2) << "cut to the newest, and two";
  EXPECT_EQ(kept.substr(kept.size() - 13), "snap off\nbye\n");
}

// Another program that has a text selected.
class selection_owner {
 public:
  selection_owner(Display* display, Atom selection, std::string text)
      : display_(display),
        window_(XCreateSimpleWindow(display, DefaultRootWindow(display), 0, 0, 1, 1, 0, 0, 0)),
        text_(std::move(text)) {
    XSetSelectionOwner(display_, selection, window_, CurrentTime);
    XSync(display_, False);
  }
  ~selection_owner() {
    XDestroyWindow(display_, window_);
    XFlush(display_);
  }
  selection_owner(const selection_owner&) = delete;
  selection_owner& operator=(const selection_owner&) = delete;

  // Answers the question for it, which must have been asked.
  void answer() const {
    XEvent event;
    for (int tries = 0;
         XCheckTypedWindowEvent(display_, window_, SelectionRequest, &event) == False; ++tries) {
      ASSERT_LT(tries, 2000) << "nobody asks for the selection";
      xdelayms(5);
    }
    const XSelectionRequestEvent& request = event.xselectionrequest;
    XChangeProperty(display_, request.requestor, request.property, request.target, 8,
                    PropModeReplace, reinterpret_cast<const unsigned char*>(text_.data()),
                    static_cast<int>(text_.size()));
    XEvent answer{};
    answer.xselection.type = SelectionNotify;
    answer.xselection.requestor = request.requestor;
    answer.xselection.selection = request.selection;
    answer.xselection.target = request.target;
    answer.xselection.property = request.property;
    answer.xselection.time = request.time;
    XSendEvent(display_, request.requestor, False, 0, &answer);
    XFlush(display_);
  }

 private:
  Display* display_;
  Window window_;
  std::string text_;
};

TEST_F(Recall, TextOfOtherProgramsIsPasted) {
  auto& s = begin();
  Display* const display = shared_display().connection();
  s.command("define key cntl_v '$PASTE'");
  s.command("define key b2 '$PDM1'");
  s.wait_for_head(" DEFine KEY b2");
  s.type("snap off");
  s.key(XK_a, test_session::control);
  const selection_owner copied(display, XInternAtom(display, "CLIPBOARD", False),
                               "sna\tp on ;\nbye");
  s.key(XK_v, test_session::control);
  copied.answer();
  s.settle();
  s.type("\n");
  s.wait_for_line(" SNAp ON ");
  s.wait_for_line(" SNAp OFF ");
  s.move(200, 900);  // the command line
  s.settle();
  const selection_owner selected(display, XA_PRIMARY, "snap on" + std::string(5000, 'x'));
  s.button_down(2);
  selected.answer();
  s.button_up(2);
  s.settle();
  s.key(XK_u, test_session::control);
  point_at(in_edit);
  s.key(XK_Escape);
  s.type("snap on\n");
  s.wait_for_line(" SNAp ON ");
  end();
}
}  // namespace
