"""Opens a page in a headless Chromium and tells in one line of JSON what a person would see of it: messages on
the console, pictures that do not load, what the Tab key does not reach, and the colours of light and dark."""

import fcntl
import json
import os
import subprocess
import sys
import tempfile
import time

FLAGS = ["--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
         "--disable-background-networking", "--disable-component-update", "--disable-sync",
         "--disable-dev-shm-usage", "--remote-debugging-pipe"]

LOOK = """(async () => {
  for (const details of document.querySelectorAll('details')) details.open = true;
  for (const image of document.images) image.loading = 'eager';
  await Promise.all(Array.from(document.images, image => image.decode().catch(() => {})));
  const files = Array.from(document.links, link => link.href).filter(href => !href.includes('#'));
  return {
    images: document.images.length,
    broken: Array.from(document.images).filter(image => !image.naturalWidth).map(image => image.src),
    curves: document.querySelectorAll('svg.spark polyline').length,
    files: files,
    reachable: document.querySelectorAll('a[href], summary').length,
    wide: document.documentElement.scrollWidth > document.documentElement.clientWidth,
  };
})()"""


class Browser:
    def __init__(self, program, folder):
        # The browser reads from descriptor 3 and writes to 4, which none of these may be already.
        ends = (*os.pipe(), *os.pipe())
        to_browser, self.out, self.back, from_browser = (fcntl.fcntl(end, fcntl.F_DUPFD_CLOEXEC, 10) for end in ends)
        for end in ends:
            os.close(end)

        def place():
            os.dup2(to_browser, 3)
            os.dup2(from_browser, 4)

        self.process = subprocess.Popen([program, *FLAGS, "--user-data-dir=" + folder, "about:blank"],
                                        preexec_fn=place, close_fds=False, stdout=subprocess.DEVNULL,
                                        stderr=subprocess.DEVNULL)
        os.close(to_browser)
        os.close(from_browser)
        self.count = 0
        self.unread = b""
        self.events = []
        self.session = None

    def read(self):
        while b"\0" not in self.unread:
            some = os.read(self.back, 65536)
            if not some:
                raise RuntimeError("the browser has ended")
            self.unread += some
        message, self.unread = self.unread.split(b"\0", 1)
        return json.loads(message)

    def call(self, method, **parameters):
        self.count += 1
        message = {"id": self.count, "method": method, "params": parameters}
        if self.session:
            message["sessionId"] = self.session
        os.write(self.out, json.dumps(message).encode() + b"\0")
        while True:
            answer = self.read()
            if answer.get("id") == self.count:
                if "error" in answer:
                    raise RuntimeError(method + ": " + answer["error"]["message"])
                return answer["result"]
            self.events.append(answer)

    def value(self, expression):
        result = self.call("Runtime.evaluate", expression=expression, awaitPromise=True, returnByValue=True)
        return result["result"].get("value")

    def wait_for(self, method):
        while not any(event.get("method") == method for event in self.events):
            self.events.append(self.read())

    def open(self, page):
        self.session = None
        target = self.call("Target.createTarget", url="about:blank")["targetId"]
        self.session = self.call("Target.attachToTarget", targetId=target, flatten=True)["sessionId"]
        for domain in ("Page", "Runtime", "Log", "Network"):
            self.call(domain + ".enable")
        self.events.clear()
        self.call("Page.navigate", url=page)
        self.wait_for("Page.loadEventFired")

    def complaints(self):
        """What stands on the console."""
        found = []
        for event in self.events:
            if event.get("method") == "Log.entryAdded":
                found.append(event["params"]["entry"]["text"])
            elif event.get("method") in ("Runtime.consoleAPICalled", "Runtime.exceptionThrown"):
                found.append(json.dumps(event["params"]))
        return found

    def reached(self, most):
        """How many different elements the Tab key comes to."""
        self.value("window.reached = new Set(); document.addEventListener('focusin', e => reached.add(e.target)); 0")
        for _ in range(most):
            for kind in ("keyDown", "keyUp"):
                self.call("Input.dispatchKeyEvent", type=kind, key="Tab", code="Tab", windowsVirtualKeyCode=9)
        return self.value("window.reached.size")

    def paper(self, scheme):
        self.call("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": scheme}])
        return self.value("getComputedStyle(document.body).backgroundColor")

    def close(self):
        self.process.kill()
        self.process.wait()


def main():
    program, page = sys.argv[1:3]
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as folder:
        browser = Browser(program, folder)
        try:
            browser.open(page)
            seen = browser.value(LOOK)
            seen["reached"] = browser.reached(seen["reachable"] + 2)
            seen["light"] = browser.paper("light")
            seen["dark"] = browser.paper("dark")
            if len(sys.argv) > 3:
                # Whether the page loads itself again once another file is in place.
                browser.events.clear()
                os.replace(sys.argv[3], sys.argv[4])
                browser.wait_for("Page.loadEventFired")
                time.sleep(0.2)
                seen["title"] = browser.value("document.title")
            seen["console"] = browser.complaints()
            # The pictures that are linked open by themselves, too.
            for file in seen.pop("files"):
                browser.open(file)
                seen["console"] += browser.complaints()
            print(json.dumps(seen))
        finally:
            browser.close()


main()
