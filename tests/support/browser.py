"""A headless Chromium that a test drives by the DevTools protocol, through two pipes."""
import base64
import json
import os
import select
import shutil
import subprocess
import tempfile
import time


class Browser:
    def __init__(self, width=1280, height=800):
        self.directory = tempfile.mkdtemp(prefix="kivo-browser-")
        to_browser, self.out = os.pipe()
        self.into, from_browser = os.pipe()

        def keep_pipes():
            for end, number in ((os.dup(to_browser), 3), (os.dup(from_browser), 4)):
                os.dup2(end, number)

        self.process = subprocess.Popen(
            ["chromium", "--headless=new", "--no-sandbox", "--disable-gpu", "--remote-debugging-pipe",
             "--disable-dev-shm-usage", "--no-first-run", "--disable-background-networking",
             "--user-data-dir=" + self.directory, "about:blank"],
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, preexec_fn=keep_pipes,
            close_fds=False)
        os.close(to_browser)
        os.close(from_browser)
        self.number, self.bytes, self.session, self.events = 0, b"", None, []
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.call("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log"):
            self.call(domain + ".enable")
        self.size(width, height)

    def close(self):
        self.process.terminate()
        self.process.wait(30)
        os.close(self.out)
        os.close(self.into)
        shutil.rmtree(self.directory, ignore_errors=True)

    def message(self, seconds=60):
        until = time.monotonic() + seconds
        while b"\0" not in self.bytes:
            if not select.select([self.into], [], [], max(0, until - time.monotonic()))[0]:
                raise TimeoutError("the browser does not answer")
            more = os.read(self.into, 1 << 20)
            if not more:
                raise EOFError("the browser has ended")
            self.bytes += more
        line, self.bytes = self.bytes.split(b"\0", 1)
        return json.loads(line)

    def call(self, method, **parameters):
        self.number += 1
        call = {"id": self.number, "method": method, "params": parameters}
        if self.session:
            call["sessionId"] = self.session
        os.write(self.out, json.dumps(call).encode() + b"\0")
        while True:
            answer = self.message()
            if answer.get("id") == self.number:
                if "error" in answer:
                    raise RuntimeError(f"{method}: {answer['error']}")
                return answer["result"]
            self.events.append(answer)

    def size(self, width, height, mobile=False):
        self.call("Emulation.setDeviceMetricsOverride", width=width, height=height,
                  deviceScaleFactor=1, mobile=mobile)
        self.call("Emulation.setTouchEmulationEnabled", enabled=mobile, maxTouchPoints=2)

    def run(self, script):
        result = self.call("Runtime.evaluate", expression=script, returnByValue=True,
                           awaitPromise=True)
        if "exceptionDetails" in result:
            raise RuntimeError(result["exceptionDetails"]["exception"].get("description", script))
        return result["result"].get("value")

    def wait(self, condition, seconds=20):
        until = time.monotonic() + seconds
        while not self.run(condition):
            if time.monotonic() > until:
                raise TimeoutError(condition)
            time.sleep(0.02)

    def open(self, path, link=""):
        """A page of kivo-page, up to its first sheet."""
        self.call("Page.navigate", url="about:blank")
        self.call("Page.navigate", url="file://" + os.path.abspath(path) + link)
        self.wait("document.readyState == 'complete' && "
                  "(document.querySelector('svg.sheet .paper, body > .fault') != null)")

    def mouse(self, kind, x, y, clicks=1, button="left", **more):
        self.call("Input.dispatchMouseEvent", type=kind, x=x, y=y, button=button,
                  clickCount=clicks, **more)

    def click(self, x, y, times=1):
        self.mouse("mouseMoved", x, y, 0, "none")
        for click in range(1, times + 1):
            self.mouse("mousePressed", x, y, click)
            self.mouse("mouseReleased", x, y, click)

    def touch(self, kind, *points):
        """Fingers: touchStart, touchMove with where all of them are, touchEnd without."""
        self.call("Input.dispatchTouchEvent", type=kind, touchPoints=[
            {"x": x, "y": y, "id": finger} for finger, (x, y) in enumerate(points)])

    def key(self, key, text=None):
        more = {"text": text} if text else {}
        code = {"Enter": 13, "Escape": 27, "Backspace": 8}.get(key, 0)
        self.call("Input.dispatchKeyEvent", type="keyDown", key=key, windowsVirtualKeyCode=code, **more)
        self.call("Input.dispatchKeyEvent", type="keyUp", key=key, windowsVirtualKeyCode=code)

    def type(self, text):
        self.call("Input.insertText", text=text)

    def picture(self, path):
        data = self.call("Page.captureScreenshot", format="png")["data"]
        with open(path, "wb") as file:
            file.write(base64.b64decode(data))

    def faults(self):
        """What the page's console got: errors of the script, refusals of the content policy."""
        self.run("1")
        return [json.dumps(event["params"])[:300] for event in self.events
                if event["method"] in ("Runtime.exceptionThrown", "Log.entryAdded")]
