"""Drives headless Chromium by the WebDriver protocol of chromedriver."""
import base64
import json
import re
import subprocess
import urllib.request

CONTROL, HOME, RIGHT, TAB, ENTER = "\ue009", "\ue011", "\ue014", "\ue004", "\ue007"
# The second group starts Chromium as root; the third keeps it from asking other machines.
ARGUMENTS = ["--headless", "--disable-gpu", "--window-size=1200,1000", "--lang=en",
             "--no-sandbox", "--disable-dev-shm-usage",
             "--no-proxy-server", "--disable-quic", "--no-first-run", "--disable-sync",
             "--disable-background-networking", "--disable-component-update"]
ELEMENT = "element-6066-11e4-a52e-4f735466cecf"  # the key of an element's id, fixed by the protocol


class Browser:
    def __init__(self, scratch):
        """Profile and downloads go to the directory `scratch`."""
        self.driver = subprocess.Popen(["chromedriver", "--port=0"], stdout=subprocess.PIPE,
                                       stderr=subprocess.STDOUT, text=True)
        started = re.compile(r"started successfully on port (\d+)")
        port = next(found[1] for found in map(started.search, self.driver.stdout) if found)
        self.open = urllib.request.build_opener(urllib.request.ProxyHandler({})).open
        self.base = f"http://127.0.0.1:{port}/session"
        wishes = {"goog:loggingPrefs": {"browser": "ALL"}, "goog:chromeOptions": {
            "args": ARGUMENTS + [f"--user-data-dir={scratch}/profile"],
            "prefs": {"download.default_directory": f"{scratch}/downloads"}}}
        session = self.call("", {"capabilities": {"alwaysMatch": wishes}})
        self.base += "/" + session["sessionId"]

    def close(self):
        self.call("", method="DELETE")
        self.driver.terminate()
        self.driver.communicate()

    def call(self, path, body=None, method=None):
        data = None if body is None else json.dumps(body).encode()
        request = urllib.request.Request(self.base + path, data, method=method,
                                         headers={"Content-Type": "application/json"})
        with self.open(request) as answer:
            return json.load(answer)["value"]

    def go(self, address):
        self.call("/url", {"url": address})

    def run(self, script, *arguments):
        return self.call("/execute/sync", {"script": script, "args": arguments})

    def wait_for(self, promise):
        """The value of a promise, an expression of the page."""
        script = f"({promise}).then(arguments[arguments.length - 1])"
        return self.call("/execute/async", {"script": script, "args": []})

    def find(self, selector):
        """The ids of all elements that match."""
        found = self.call("/elements", {"using": "css selector", "value": selector})
        return [element[ELEMENT] for element in found]

    def click(self, selector, n=0):
        self.call(f"/element/{self.find(selector)[n]}/click", {})

    def type_into(self, selector, text):
        """Replaces the text of a field as a user does."""
        element = self.find(selector)[0]
        self.call(f"/element/{element}/clear", {})
        self.call(f"/element/{element}/value", {"text": text})

    def press(self, *keys):
        """Presses the keys together, wherever the focus is."""
        actions = [{"type": kind, "value": key} for kind, order in
                   (("keyDown", keys), ("keyUp", keys[::-1])) for key in order]
        self.call("/actions", {"actions": [{"type": "key", "id": "keys", "actions": actions}]})

    def drag(self, selector, right, down):
        """Moves the pressed mouse from the middle of an element."""
        place = {"origin": {ELEMENT: self.find(selector)[0]}, "type": "pointerMove", "duration": 0}
        self.call("/actions", {"actions": [{"type": "pointer", "id": "mouse", "actions": [
            {**place, "x": 0, "y": 0}, {"type": "pointerDown", "button": 0},
            {**place, "x": right, "y": down}, {"type": "pointerUp", "button": 0}]}]})

    def complaints(self):
        """The messages of the console since the last call."""
        return [entry["message"] for entry in self.call("/se/log", {"type": "browser"})]

    def focused_label(self):
        """What a screen reader calls the element that has the focus."""
        return self.call(f"/element/{self.call('/element/active')[ELEMENT]}/computedlabel")

    def emulate(self, command, **parameters):
        """A command of Chromium's own protocol."""
        return self.call("/goog/cdp/execute", {"cmd": command, "params": parameters})

    def screenshot(self, path):
        with open(path, "wb") as file:
            file.write(base64.b64decode(self.call("/screenshot")))
