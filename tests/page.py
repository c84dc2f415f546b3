#!/usr/bin/env python3
"""Pages for the browser, in a real one: what clicks, keys and links lead to, and what is then on the
screen.

usage: page.py BUILD SOURCE
"""
import atexit, json, os, pathlib, re, shutil, subprocess, sys, tempfile, time

build, source = (pathlib.Path(word).resolve() for word in sys.argv[1:3])
sys.path.insert(0, str(source / "tests/support"))
from browser import Browser

os.environ.pop("DISPLAY", None)
os.environ["VELMORAN"] = str(build / "product")
work = pathlib.Path(tempfile.mkdtemp(prefix="kivo-page-"))
atexit.register(shutil.rmtree, work, True)
cases = source / "tests/cases/page"
RAW = (cases / "register.raw").read_text()


def run(status, *words):
    result = subprocess.run(list(map(str, words)), cwd=work, capture_output=True, text=True,
                            stdin=subprocess.DEVNULL, timeout=60)
    assert result.returncode == status, (words, result.returncode, result.stdout, result.stderr)
    return result.stdout + result.stderr


def make(name, text=None, folder=None):
    file = (folder or source / "examples" / name) / f"{name}.gxt"
    if text is not None:
        file = work / file.name
        file.write_text(text)
    run(0, build / "tools/gxmake", "-q", "-o", work, file)


def page(name, *options, status=0):
    """The page of a design; what was said of it."""
    return run(status, build / "tools/kivo-page", name, "-o", name + ".html", *options)


def batch(design, lines, status=0):
    (work / "lines.do").write_text("\n".join([*lines, "BYE", ""]))
    return run(status, build / "kivo", "--batch", "-q", "--json", design, "lines.do")


class Page(Browser):
    """What a reader sees of a page and does to it."""

    def show(self, name, link=""):
        self.open(work / (name + ".html"), link)

    def text(self, selector):
        return self.run(f"document.querySelector({json.dumps(selector)}).textContent")

    def texts(self, selector):
        return self.run(f"[...document.querySelectorAll({json.dumps(selector)})]"
                        ".filter(e => e.checkVisibility()).map(e => e.textContent)")

    def click_on(self, selector, text, times=1):
        """An element with that text, at its place on the screen."""
        at = self.run("(() => { const e = [...document.querySelectorAll(%s)]"
                      ".find(e => e.textContent === %s && e.checkVisibility()); if (!e) return null;"
                      "e.scrollIntoView({block: 'nearest'});"
                      "const b = e.getBoundingClientRect();"
                      "return [b.x + b.width / 2, b.y + b.height / 2]; })()"
                      % (json.dumps(selector), json.dumps(text)))
        assert at, (selector, text, self.texts(selector))
        self.click(*at, times)

    def click_net(self, name):
        """The middle of the wires of the net with that name on the sheet."""
        self.click(*self.run(
            "(() => { const path = [...document.querySelectorAll('.sheet .nets g')]"
            ".find(g => [...g.querySelectorAll('text')].some(t => t.textContent === %s))"
            ".querySelector('path');"
            "const at = path.getPointAtLength(path.getTotalLength() * 0.4)"
            ".matrixTransform(path.getScreenCTM()); return [at.x, at.y]; })()" % json.dumps(name)))

    def search(self, text):
        self.run("document.querySelector('.search input').value = ''")
        self.run("document.querySelector('.search input').focus()")
        self.type(text)
        return self.texts(".hits button")

    def title(self):
        return self.text(".details h2")

    def link(self):
        return self.run("location.hash")

    def view(self):
        return list(map(float, self.run("document.querySelector('svg.sheet').getAttribute('viewBox')")
                        .split()))


def is_equal(found, wanted):
    assert found == wanted, f"\n  {found}\nis not\n  {wanted}"


def walks(browser):
    browser.show("register")
    is_equal(browser.title(), "register")
    browser.click_on(".sheet .block text", "XR", 2)
    is_equal(browser.texts(".crumbs button"), ["register", "XR"])
    is_equal(browser.text(".sheet .title"), "/XR  reg4")
    is_equal(browser.texts(".node.current .name"), ["XR"])
    browser.click_on(".tree .name", "X2")
    is_equal((browser.link(), browser.text(".sheet .title")), ("#/XR/X2/", "/XR/X2  dlatch"))
    browser.click_on(".sheet .title", "/XR/X2  dlatch")
    is_equal(browser.link(), "#/XR/X2")  # the block that was left is chosen
    is_equal(browser.title(), "/XR/X2")
    browser.key("Enter")
    browser.click_on(".sheet .frames text", "transparent latch: Q follows D while CK is high")
    is_equal((browser.title(), browser.link()), ("/XR/X2", "#/XR/X2/"))  # nothing is chosen
    browser.key("u")
    browser.key("u")
    is_equal(browser.text(".sheet .title"), "register")
    browser.run("history.back()")
    browser.wait("document.querySelector('.sheet .title').textContent == '/XR  reg4'")
    browser.show("register", "#/xr/x2/mp1")
    is_equal((browser.title(), browser.text(".sheet .title")), ("/XR/X2/MP1", "/XR/X2  dlatch"))
    assert "W" in browser.texts(".details th") and "(DRIVE*WP)" in browser.texts(".details td")
    frame = "document.querySelector('.marks .chosen').getBoundingClientRect()"
    inside = browser.run(f"(() => {{ const b = {frame}; return [...document.querySelectorAll("
                         "'.sheet .parts text')].filter(t => { const c = t.getBoundingClientRect();"
                         "return c.left < b.right + 5 && c.right > b.left && c.top < b.bottom &&"
                         "c.bottom > b.top; }).map(t => t.textContent); })()")
    assert "MP1" in inside and "MP2" not in inside, inside
    browser.show("register", "#/XR/NOWHERE")
    is_equal(browser.text("footer"), "#/XR/NOWHERE: is not in this design")


def explained(design, nets, setup, status):
    """What EXPlain says: by path the nets with their reasons, and the pins."""
    answers, net = {}, None
    asked = [f"EXPlain NET {path} ALl" for path in nets]
    said = [line for line in batch(design, setup + asked, status).splitlines() if line[0] == "{"]
    for record in [record for line in said for record in json.loads(line)["records"]]:
        if record["type"] == "net":
            net = answers[record["path"]] = {"nets": [], "pins": []}
        elif record["type"] == "joined":
            net["nets"].append((record["path"], record["reason"]))
        elif record["type"] == "pin":
            net["pins"].append((record["path"], record["way"]))
    return answers


def joins_as_explained(browser, design, setup, least, status=0):
    """Every net, by the search: what the page says is what EXPlain does."""
    batch(design, setup, status)
    dump = json.loads(run(0, build / "tools/kvdump", "--json", design))
    nets = [net["path"] for net in dump["nets"]]
    answers = explained(design, nets, setup, status)
    assert len(answers) >= least, answers.keys()
    browser.show(design)
    for path, wanted in answers.items():
        if not wanted["pins"]:
            continue  # a bus: its members have the pins
        browser.search(path)
        browser.key("Enter")
        is_equal(browser.title(), path)
        rows = browser.run("[...document.querySelectorAll('.details .rows')].map(list => "
                           "[...list.children].map(row => [...row.children].map(e => e.textContent)))")
        is_equal(sorted(map(tuple, rows[0])), sorted(wanted["nets"]))
        is_equal(sorted(map(tuple, rows[1])), sorted(wanted["pins"]))


def marks_nets(browser):
    browser.show("register", "#/XR/X2/")
    browser.click_net("X")
    is_equal((browser.title(), browser.link()), ("/XR/X2/X", "#/XR/X2/X"))
    # A ring at each pin, where a wire ends.
    ends = set(re.findall(r"-?[0-9.]+ -?[0-9.]+", browser.run(
        "[...document.querySelectorAll('.marks path.hot')].map(p => p.getAttribute('d')).join()")))
    rings = browser.run("[...document.querySelectorAll('.marks circle.hot')].map("
                        "c => c.getAttribute('cx') + ' ' + c.getAttribute('cy'))")
    assert len(rings) == 6 and set(rings) <= ends, (rings, ends)
    is_equal(browser.texts(".marks text.hot"), ["X"])
    browser.click_net("CK")  # comes from above
    hot = browser.title()
    is_equal(browser.texts(".node.hot .name"), ["XR", "X0", "X1", "X2", "X3", "XCK"])
    browser.key("u")
    is_equal(browser.title(), hot)
    assert browser.run("document.querySelectorAll('.marks path.hot').length") > 0
    browser.click_on(".details .pin", "/XR/X3/MP5/G")
    is_equal((browser.title(), browser.link()), ("/XR/X3/MP5", "#/XR/X3/MP5"))
    browser.show("register")
    browser.click_net("Q")
    is_equal(browser.texts(".details .bit"), ["0", "1", "2", "3"])
    browser.click_on(".details .bit", "2")
    is_equal(browser.title(), "/Q_2")
    is_equal(len(browser.texts(".marks circle.hot")), 2)  # XR and the load of that bit


def finds(browser):
    browser.show("register")
    for typed, place in [("r:x2:x", "/XR/X2/X"), ("m.xr.x2.mp1", "/XR/X2/MP1"), ("v(Q[2])", "/Q_2"),
                         ("@m.xr.x0.mn1[id]", "/XR/X0/MN1"), ("xr.x3", "/XR/X3"),
                         ("/XR/X1/MP1/G", "/XR/X1/MP1/G")]:
        found = browser.search(typed)
        assert found and found[0].startswith(place), (typed, found)
    is_equal(browser.search("/XR/X*/MP1"), [f"/XR/X{i}/MP1" for i in range(4)] + ["/XR/XCK/MP1"])
    found = browser.search("dlatch")
    is_equal((found[0], browser.texts(".hits .kind")[0]), ("/XR/X0/", "sheet dlatch, 1 of 4 uses"))
    browser.click_on(".hits button", "/XR/X2")
    is_equal(browser.title(), "/XR/X2")
    is_equal(browser.texts(".hits"), [])
    is_equal(browser.search("no such thing"), [])
    is_equal(browser.texts(".hits .kind"), ["nothing found"])


def moves(browser):
    browser.show("register")
    whole = browser.view()
    browser.mouse("mouseWheel", 640, 400, 0, "none", deltaX=0, deltaY=-240)
    browser.wait("view.scale > 0", 1)
    near = browser.view()
    assert near[2] < whole[2] * 0.8, (whole, near)
    middle = lambda view: (view[0] + view[2] * 0.5, view[1] + view[3] * 0.5)
    browser.mouse("mousePressed", 640, 400)
    browser.mouse("mouseMoved", 540, 430)
    browser.mouse("mouseReleased", 540, 430)
    moved, unit = browser.view(), near[2] / browser.run("parts.sheet.clientWidth")
    shift = [b - a for a, b in zip(middle(near), middle(moved))]
    assert abs(shift[0] - 100 * unit) < 3 and abs(shift[1] + 30 * unit) < 3, (shift, unit)
    is_equal(browser.title(), "register")  # a drag chooses nothing
    browser.key("f")
    is_equal(browser.view(), whole)
    browser.key("/")
    is_equal(browser.run("document.activeElement.type"), "search")
    browser.key("Escape")
    ground = "getComputedStyle(document.body).backgroundColor"
    light = browser.run(ground)
    browser.key("t")
    browser.key("t")
    assert browser.run(ground) != light
    browser.size(390, 800, True)  # a phone
    is_equal(browser.run("document.scrollingElement.scrollWidth"), 390)
    assert browser.run("parts.sheet.clientHeight") > 300 and not browser.texts(".tree .name")
    browser.click_on("header button", "☰")
    is_equal(browser.texts(".tree .name")[0], "register")
    browser.click_on(".tree .name", "register")
    whole = browser.view()
    browser.touch("touchStart", (150, 250))
    browser.touch("touchStart", (150, 250), (250, 250))
    browser.touch("touchMove", (100, 250), (300, 250))
    browser.touch("touchEnd")
    assert abs(browser.view()[2] * 2 - whole[2]) < 1, (whole, browser.view())
    browser.run("fit()")
    block = browser.run("(() => { const b = document.querySelector('.sheet .block')"
                        ".getBoundingClientRect(); return [b.x + b.width / 2, b.y + b.height / 2]; })()")
    for tap in range(2):
        browser.touch("touchStart", block)
        browser.touch("touchEnd")
    is_equal(browser.link(), "#/XR/")
    browser.size(1280, 800)


def picks_from_stacks(browser):
    """Instances at one place, as vectors of imported drawings: a click goes on to the next one."""
    make("stack", "symbol b\n rect 0,0 4,4\n pin A 0,1 IN\nsheet b\n page 20,20\n text IN_B at 5,5\n"
         "sheet stack\n page 30,20\n part A1 b 5,5\n part A2 b 5,5\n part A3 b 15,5\n")
    page("stack")
    browser.show("stack")
    drawn = browser.run("[...document.querySelectorAll('.sheet .block')].map(e => {"
                        "const b = e.getBoundingClientRect();"
                        "return [b.x + b.width / 2, b.y + b.height / 2]; })")
    is_equal(len(drawn), 2)
    for wanted in ("/A1", "/A2", "/A1"):
        browser.click(*drawn[0])
        is_equal(browser.title(), wanted)
        assert "2 are drawn here" in browser.text(".details .kind")
        time.sleep(0.5)  # two clicks, not a double one
    browser.click(*drawn[0])
    browser.key("Enter")
    is_equal(browser.link(), "#/A2/")
    browser.key("u")
    time.sleep(0.5)
    browser.click(*drawn[0], 2)
    is_equal(browser.link(), "#/A1/")


def shows_values(browser):
    (work / "register.raw").write_text(RAW)
    page("register", "--values", "register.raw", "--at", "50n", "--at", "100n")
    browser.show("register", "#/XR/X2/X")
    is_equal(browser.texts(".details table:first-of-type td"), ["450 mV", "900 mV"])
    assert "450 mV" in browser.texts(".sheet .values text")
    browser.run("document.querySelector('header select').selectedIndex = 1;"
                "document.querySelector('header select').dispatchEvent(new Event('change'))")
    is_equal(sorted(browser.texts(".sheet .values text"))[:2], ["-250 mV", "0 V"])
    browser.show("register", "#/XR/X2/MP3")
    is_equal(browser.texts(".details table:first-of-type td"), ["1 uA", "2 uA"])
    browser.click_on("header button", "Values")
    is_equal(browser.texts(".sheet .values text"), [])
    assert "100 ns" in page("register", "--values", "register.raw", "--at", "1", status=1)
    (work / "other.raw").write_text(RAW.replace("clk", "a").replace("r:x2", "b").replace("q_2", "c")
                                    .replace("xr.x2", "d"))
    assert "no variable" in page("register", "--values", "other.raw", status=1)
    page("register")


def shows_findings(browser):
    make("faults")
    shutil.copy(source / "examples/faults/check.do", work)
    run(1, build / "kivo", "--batch", "-q", "faults", "check.do")
    (work / "faults/waivers").write_text('no-driver "/N_*" "driven <later>" 2026-01-02\n')
    page("faults")
    browser.show("faults")
    count = len(json.loads((work / "faults/findings.json").read_text()))
    is_equal(browser.texts(".tabs button")[1], f"Findings ({count - 1})")
    browser.click_on(".tabs button", f"Findings ({count - 1})")
    is_equal(browser.texts(".findings .waiver"), ["waived: driven <later> (2026-01-02)"])
    browser.click_on(".findings .link", "/XN/C1")
    is_equal((browser.link(), browser.title()), ("#/XN/C1", "/XN/C1"))
    assert any("class-twice" in text for text in browser.texts(".details .reason"))
    assert browser.run("document.querySelectorAll('.marks rect.finding.error').length") > 0
    page("faults", "--no-findings")
    browser.show("faults")
    is_equal(browser.texts(".tabs button"), ["Blocks"])
    (work / "faults/findings.json").write_text("[{]\n")
    page("faults")
    browser.show("faults")
    browser.click_on(".tabs button", "Findings (0)")
    assert "cannot be read" in browser.texts(".findings .kind")[0]
    (work / "faults/findings.json").write_text("no list")
    assert "faults/findings.json: no findings" in page("faults", status=1)


def hostile(browser):
    """Texts that would be markup, and a script that somebody puts in."""
    attack = "</script><script>window.hit=1</script><img src=x onerror=window.hit=1>"
    make("hostile", 'symbol s\n pin A 0,1 IN\n rect 0,0 2,2\nsheet hostile\n page 30,20\n'
         f' part U1 s 5,5 "NOTE={attack}" "VALUE=1\\u{{B5}}F"\n text "{attack}" at 3,3\n'
         ' text "4.7 k\\u{3A9}" at 3,9\n')
    page("hostile")
    bytes = (work / "hostile.html").read_text()
    assert "onerror" not in bytes
    browser.show("hostile")
    assert attack in browser.texts(".sheet text"), browser.texts(".sheet text")
    browser.show("hostile", "#/U1")
    assert {attack, "1µF"} <= set(browser.texts(".details td"))
    assert "4.7 kΩ" in browser.texts(".sheet text")
    is_equal(browser.run("window.hit"), None)
    is_equal(browser.faults(), [])
    # Even what stands in the file is not run, and nothing is loaded.
    (work / "hostile.html").write_text(bytes.replace("<noscript>", attack + "<noscript>"))
    browser.show("hostile")
    is_equal(browser.run("window.hit"), None)
    faults = " ".join(browser.faults())
    assert "script-src" in faults and "default-src" in faults, faults
    browser.events.clear()


def refuses():
    make("round", "symbol a\n pin A 0,1 IN\nsheet a\n page 30,20\n part X a 5,5\n"
         "sheet round\n page 30,20\n part X a 5,5\n")
    assert "/X: contains itself" in page("round", status=1)
    make("register")
    sheet = work / "dlatch/sheet.gx_1"
    whole = sheet.read_bytes()
    sheet.write_bytes(whole[:len(whole) // 2])
    said = page("register", status=1)
    assert "dlatch/sheet.gx_1" in said and "(left out)" in said, said
    sheet.write_bytes(whole)
    assert "nowhere: no sheet" in page("nowhere", status=1)
    page("register")
    return True


def left_out(browser):
    """A page without the sheet that was damaged: the block says why."""
    sheet = work / "dlatch/sheet.gx_1"
    whole = sheet.read_bytes()
    sheet.write_bytes(whole[:len(whole) // 2])
    page("register", status=1)
    sheet.write_bytes(whole)
    browser.show("register", "#/XR/X2")
    assert "dlatch" in browser.text(".details .fault"), browser.text(".details")
    is_equal(browser.texts(".tree .name"), ["register", "XR", "XCK"])
    page("register")


make("register")
page("register")
shutil.copy(source / "examples/register/expand.do", work)
setup = [line for line in (work / "expand.do").read_text().splitlines()
         if line and not re.match("#|BYE|GEN", line)]
refuses()
browser = Page()
try:
    for test in (walks, marks_nets, finds, moves, picks_from_stacks, shows_values, shows_findings,
                 left_out):
        test(browser)
    joins_as_explained(browser, "register", setup, 20)
    make("ways", folder=cases)
    page("ways")
    joins_as_explained(browser, "ways", setup, 15, 1)
    is_equal(browser.faults(), [])
    hostile(browser)
finally:
    browser.close()
