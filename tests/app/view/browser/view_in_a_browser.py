"""Opens the pages of `chat-transfer view` in Debian's Chromium, from the disk, and does what a person does.

view_in_a_browser.py PROGRAM CHECK runs one check; its name says what has to hold. Exit code 77: there is no Chromium.
"""

import json
import os
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import time
import zlib

SKIPPED = 77
USER = "1000000000000001"

try:
    from selenium import webdriver
    from selenium.webdriver.common.by import By
    from selenium.webdriver.common.keys import Keys
    from selenium.webdriver.support.ui import WebDriverWait
except ImportError:
    print("skipped: python3-selenium is not installed (make browser-tests installs it)")
    sys.exit(SKIPPED)

# Every way of running something that is older than the viewer. Each would call hacked() or load something.
ATTACKS = [
    "<script>hacked()</script>",
    "</script><script>hacked()</script>",
    "<img src=x onerror=hacked()>",
    '"><img src=x onerror="hacked()">',
    "'><svg onload=hacked()>",
    "<svg/onload=hacked()//",
    "<svg><script href='data:,hacked()'/></svg>",
    "<a href='javascript:hacked()'>click</a>",
    "javascript:hacked()",
    "<iframe srcdoc='<script>parent.hacked()</script>'></iframe>",
    "<iframe src=javascript:hacked()>",
    "<object data=javascript:hacked()><embed src=javascript:hacked()>",
    "<body onload=hacked()>",
    "<input autofocus onfocus=hacked()>",
    "<details open ontoggle=hacked()>",
    "<video><source onerror=hacked()></video>",
    "<math><mtext><style><img src=x onerror=hacked()></style></mtext></math>",
    "<template><script>hacked()</script></template>",
    "</template></style></title></textarea></noscript></main><script>hacked()</script>",
    "<!--><script>hacked()</script-->",
    "<![CDATA[<script>hacked()</script>]]>",
    "<meta http-equiv=refresh content='0;url=javascript:hacked()'>",
    "<meta http-equiv=Content-Security-Policy content='script-src *'>",
    "<base href=https://attack.example/>",
    "<link rel=stylesheet href=https://attack.example/x.css>",
    "<link rel=prefetch href=https://attack.example/x><link rel=dns-prefetch href=//attack.example>",
    "<style>@import 'https://attack.example/x.css'; *{background:url(https://attack.example/x)}</style>",
    "<div style='background:url(https://attack.example/x)'>",
    "<form action=https://attack.example/><button>send</button></form>",
    "&lt;script&gt;hacked()&lt;/script&gt;",
    "&#60;script&#62;hacked()&#60;/script&#62;",
    "&lt&#x3C;img src=x onerror=hacked()&gt;",
    "\u2028hacked()\u2029//",
    "\\u003cscript\\u003ehacked()\\u003c/script\\u003e",
    "\\\"});hacked();//",
    "\"]]});hacked();takePart(1,{",
    "${hacked()} {{hacked()}} `hacked()`",
    "<scr\u0000ipt>hacked()</scr\u0000ipt>",
    "\ufeff<script>hacked()</script>",
    "+ADw-script+AD4-hacked()+ADw-/script+AD4-",
    "<" * 2000 + "script>hacked()",
    "<div>" * 2000 + "<script>hacked()</script>",
    "\u202e>tpircs/<)(dekcah>tpircs<",
    "data:text/html,<script>hacked()</script>",
    "file:///etc/passwd //attack.example/share",
]


def shown(text):
    """What the pages show of a text of the attacks: a text ends at its first NUL."""
    return text.split("\0")[0]


def png(size):
    rows = b"".join(b"\0" + bytes([x * 255 // size, 90, 160]) * size for x in range(size))
    chunks = [(b"IHDR", struct.pack(">IIBBBBB", size, size, 8, 2, 0, 0, 0)), (b"IDAT", zlib.compress(rows)), (b"IEND", b"")]
    return b"\x89PNG\r\n\x1a\n" + b"".join(
        struct.pack(">I", len(data)) + name + data + struct.pack(">I", zlib.crc32(name + data)) for name, data in chunks)


def wav():
    samples = bytes(128 + (i // 20 % 2) * 40 for i in range(8000))
    return (b"RIFF" + struct.pack("<I", 36 + len(samples)) + b"WAVEfmt " +
            struct.pack("<IHHIIHH", 16, 1, 1, 8000, 8000, 1, 8) + b"data" + struct.pack("<I", len(samples)) + samples)


class Package:
    """A package that is written message by message."""

    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.root = self.folder / "qelmsg_0"
        self.days, self.contacts, self.count = {}, [], 0

    def say(self, body, conversation=2002, sender=2002, kind=1, day=(2024, 3, 7)):
        self.count += 1
        self.days.setdefault(day, []).append({
            "sendUserID": sender, "sendTime": 1709820300000 + self.count * 1000, "message": body, "messageType": kind,
            "messageID": self.count, "senderSessionID": conversation})

    def know(self, contact, name, last=""):
        self.contacts.append({"targetID": contact, "name": name, "lastMsg": last})

    def attach(self, name, data):
        path = self.root / "qelimfiles_0" / USER / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_bytes(data)

    def write(self):
        messages = self.root / "messages_0" / USER
        messages.mkdir(parents=True)
        (self.root / "qelimfiles_0" / USER).mkdir(parents=True, exist_ok=True)
        days = [{"date": dict(zip(("year", "month", "day"), day)), "msgs": said} for day, said in self.days.items()]
        (messages / "msg_0.mg").write_text(json.dumps({"version": "1.0", "msgs": days}))
        (messages / "recontact.mg").write_text(json.dumps({"version": "1.0", "recontact": self.contacts}))


class Browser:
    """Chromium without a window and without a network, on pages from the disk."""

    def __init__(self, folder):
        options = webdriver.ChromeOptions()
        options.binary_location = shutil.which("chromium")
        for option in ("--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
                       "--disable-background-networking", "--disable-component-update", "--disable-sync",
                       "--disable-dev-shm-usage", "--window-size=1100,900", "--host-resolver-rules=MAP * ~NOTFOUND",
                       "--user-data-dir=" + os.path.join(folder, "profile")):
            options.add_argument(option)
        options.add_experimental_option("prefs", {"download.default_directory": os.path.join(folder, "downloads")})
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        service = webdriver.chrome.service.Service(shutil.which("chromedriver"))
        self.driver = webdriver.Chrome(service=service, options=options)
        # Before any page: what an attack would call.
        self.driver.execute_cdp_cmd("Page.addScriptToEvaluateOnNewDocument", {
            "source": "window.hacks = 0; window.hacked = () => { ++window.hacks; }; window.alert = window.hacked;"})
        self.pages = None
        self.driver.get("about:blank")
        self.loads()  # of the browser's own start page

    def open(self, page):
        self.driver.get((self.pages / page).as_uri())

    def find(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def all(self, selector):
        return self.driver.find_elements(By.CSS_SELECTOR, selector)

    def link(self, text):
        return self.driver.find_element(By.LINK_TEXT, text)

    def run(self, script, *arguments):
        return self.driver.execute_script("return " + script, *arguments)

    def wait(self, condition):
        return WebDriverWait(self.driver, 30).until(lambda _: condition())

    def search(self, words):
        field = self.find("#query")
        field.clear()
        field.send_keys(words, Keys.ENTER)
        self.wait(lambda: self.find("#state").text and "searching" not in self.find("#state").text)
        return self.find("#state").text

    def address(self):
        return self.driver.current_url.split("/pages/")[-1]

    def loads(self):
        """The addresses that were asked for since the last call, but for the browser's own icons of fields and players."""
        events = [json.loads(entry["message"])["message"] for entry in self.driver.get_log("performance")]
        addresses = [event["params"]["request"]["url"] for event in events if event["method"] == "Network.requestWillBeSent"]
        return [address for address in addresses if not address.startswith("data:image/svg+xml;base64,")]

    def complaints(self):
        """What the browser complained about since the last call: refused loads, errors of scripts."""
        return [entry["message"] for entry in self.driver.get_log("browser")]


def expect(condition, words):
    if not condition:
        raise AssertionError(words)


def same(expected, actual):
    expect(expected == actual, "expected %r, got %r" % (expected, actual))


# --- The checks ---


def conversations(package):
    package.know(2002, "Ada Winter")
    package.know(3003, "Family 👨‍👩‍👧")
    for number in range(1, 1201):
        package.say("text %d." % number, day=(2024, 1 + number // 300, 1 + number % 300 // 20))
    package.say("older", conversation=3003, sender=3003, day=(2023, 1, 1))


def ConversationsOpenPageByPage(browser):
    browser.open("index.html")
    names = [name.text for name in browser.all(".conversations .name")]
    same(["Ada Winter", "Family 👨‍👩‍👧"], names)
    browser.link("Ada Winter").click()
    same("conversations/2002/1.html", browser.address())
    same(500, len(browser.all(".message")))
    browser.link("Next").click()
    same("conversations/2002/2.html", browser.address())
    expect("text 501." in browser.find("#m501").text, "the next page goes on with the next message")
    browser.link("Last").click()
    same(200, len(browser.all(".message")))
    browser.link("First").click()
    same("conversations/2002/1.html", browser.address())
    browser.link("Conversations").click()
    browser.find(".last a").click()
    same("conversations/2002/3.html#m1200", browser.address())
    expect(browser.run("document.querySelector(':target').getBoundingClientRect().top < innerHeight"),
           "the last message is in view")
    same([], browser.complaints())


def DaysLeadToTheirMessages(browser):
    browser.open("conversations/2002/1.html")
    browser.link("All days").click()
    same("conversations/2002/days.html", browser.address())
    browser.link("Friday, 1 March 2024").click()
    same("conversations/2002/2.html#d2024-03-01", browser.address())
    heading = browser.find("#d2024-03-01")
    expect(abs(browser.run("arguments[0].getBoundingClientRect().top", heading)) < 100, "the day is at the top")
    browser.find("details summary").click()
    browser.link("2024-03-05").click()
    same("conversations/2002/2.html#d2024-03-05", browser.address())


def talks(package):
    package.know(2002, "Ada")
    package.know(3003, "Νίκος")
    package.say("Straßenfest in KÖLN, um 8 Uhr")
    package.say("cafe\u0301 au lait")
    package.say("Ο ΔΡΟΜΟΣ", conversation=3003, sender=3003)
    package.say("明天早上见面", conversation=3003, sender=3003)
    package.say("x" * 3000 + " needle " + "y" * 3000, conversation=3003, sender=3003)
    package.say("İstanbul needle 😀")


def SearchFindsMessagesAndLeadsToThem(browser):
    browser.open("search.html")
    for words, expected in (("köln", 1), ("STRASSENFEST", 0), ("straßenfest", 1), ("CAFÉ", 1), ("δρομος", 1),
                            ("早上", 1), ("needle", 2), ("nothing like it", 0), ("<b>", 0)):
        same("%d message%s found" % (expected, "" if expected == 1 else "s"), browser.search(words))
        same(expected, len(browser.all("#hits li")))
    browser.search("needle")
    marks = [mark.text for mark in browser.all("mark")]
    same(["needle", "needle"], marks)
    texts = [hit.text for hit in browser.all("#hits li")]
    expect(any("İstanbul needle 😀" in text for text in texts), "the whole short message is shown: %r" % texts)
    expect(all(len(text) < 400 for text in texts), "a long message is shown in part")
    expect("2024-03-07" in texts[0], "a hit has its day")
    browser.search("早上")
    browser.link("Νίκος").click()
    browser.wait(lambda: "conversations/3003/1.html#m2" in browser.driver.current_url)
    expect("明天早上见面" in browser.find(":target").text, "the hit leads to its message")
    same([], browser.complaints())


def longTalk(package):
    for number in range(12000):
        package.say("message %d is %s" % (number, "rare" if number % 4000 == 0 else "common"))


def SearchGoesThroughAllPartsAndStopsForMore(browser):
    browser.open("search.html")
    same("3", browser.find("#search").get_attribute("data-parts"))
    same("3 messages found", browser.search("rare"))
    expect(not browser.find("#more").is_displayed(), "there are no more")
    same("100 messages found so far", browser.search("common"))
    same(100, len(browser.all("#hits li")))
    browser.find("#more").click()
    browser.wait(lambda: len(browser.all("#hits li")) == 200)
    same("200 messages found so far", browser.find("#state").text)
    same("3 messages found", browser.search("RARE"))
    same(3, len(browser.all("#hits li")))
    same([], browser.complaints())


def media(package):
    package.say(json.dumps({"mediaUrl": "a/photo.png", "thumbUrl": "a/small.png"}), kind=5)
    package.say(json.dumps({"mediaUrl": "a/v", "fileName": "voice.wav"}), kind=3)
    package.say(json.dumps({"mediaUrl": "a/f", "fileName": "plan.pdf"}), kind=6)
    package.attach("a/photo.png", png(80))
    package.attach("a/voice.wav", wav())
    package.attach("a/plan.pdf", b"%PDF-1.4\n")


def PicturesAndVoicesLoadFromTheDisk(browser):
    browser.open("conversations/2002/1.html")
    picture = browser.find(".picture img")
    browser.wait(lambda: browser.run("arguments[0].complete", picture))
    same(80, browser.run("arguments[0].naturalWidth", picture))
    voice = browser.find("audio")
    browser.wait(lambda: browser.run("arguments[0].readyState", voice) > 0)
    expect(abs(browser.run("arguments[0].duration", voice) - 1) < 0.1, "the voice message can be played")
    same(["voice.wav", "plan.pdf"], [link.text for link in browser.all("a.file")])
    browser.find(".picture a").click()
    expect(browser.driver.current_url.endswith("/media/1.png"), "the picture opens")
    same([], browser.complaints())


def StatisticsDrawTheirPlots(browser):
    browser.open("statistics.html")
    columns = browser.all("svg.columns")
    same(2, len(columns))
    for plot in columns:
        expect(plot.size["width"] > 400 and plot.size["height"] > 100, "the plot has its size: %r" % plot.size)
    rows = browser.all(".rows tr")
    expect([row.text.split("\n")[0] for row in rows][0].startswith("Ada Winter"), "the busiest one is first")
    widths = [bar.size["width"] for bar in browser.all(".rows rect")]
    expect(widths[0] > 100 and widths[0] > 100 * widths[1], "1200 messages are longer than one: %r" % widths)
    browser.find("details summary").click()
    expect(browser.find(".figures").is_displayed(), "the figures open")
    same([], browser.complaints())


def ColoursFollowDarkAndLight(browser):
    def brightness(selector, what):
        colour = browser.run("getComputedStyle(arguments[0])[arguments[1]]", browser.find(selector), what)
        return sum(int(part) for part in colour[colour.index("(") + 1:-1].split(",")[:3])

    for scheme, darker, lighter in (("light", "color", "backgroundColor"), ("dark", "backgroundColor", "color")):
        browser.driver.execute_cdp_cmd("Emulation.setEmulatedMedia",
                                       {"features": [{"name": "prefers-color-scheme", "value": scheme}]})
        for page in ("index.html", "conversations/2002/1.html", "search.html", "statistics.html"):
            browser.open(page)
            expect(brightness("body", lighter) - brightness("body", darker) > 400, scheme + " " + page)


def mixedScripts(package):
    package.know(2002, "\u202eנועה \u2066לוי")
    package.say("שלום! מה שלומך?")
    package.say("\u202e\u2067\u2067reversed")
    package.say("plain after it")
    package.say("مرحبا hello 123")
    package.say("W" * 5000)
    package.say("👩‍👩‍👧‍👦" * 300)


def RightToLeftTextStaysInItsMessage(browser):
    browser.open("conversations/2002/1.html")
    bodies = browser.all(".body")
    directions = [browser.run("getComputedStyle(arguments[0]).direction", body) for body in bodies]
    same(["rtl", "ltr", "ltr", "rtl", "ltr", "ltr"], directions)
    # Where the first and the last letter of the text stand: a reversed line has them the other way round.
    order = """(() => { const range = document.createRange(), text = arguments[0].firstChild;
        const at = i => { range.setStart(text, i); range.setEnd(text, i + 1); return range.getBoundingClientRect().left; };
        return at(0) < at(text.length - 1); })()"""
    expect(browser.run(order, bodies[2]), "the message after the reversed one is not reversed")
    width = browser.run("document.documentElement.scrollWidth")
    expect(width <= browser.run("innerWidth"), "long words and emoji do not widen the page: %d" % width)
    for element in browser.all(".meta"):
        expect(browser.run("getComputedStyle(arguments[0]).direction", element) == "ltr", "the line above stays")
    same([], browser.complaints())


def attacks(package):
    for attack in ATTACKS:
        package.say(attack)
    for number, attack in enumerate(ATTACKS):
        package.know(5000 + number, attack, attack)
        package.say("from " + attack, conversation=5000 + number, sender=5000 + number)
        package.say(json.dumps({"mediaUrl": "a/" + attack, "fileName": attack + ".html"}), conversation=4004, kind=6)
        package.say(json.dumps({"mediaUrl": attack, "thumbUrl": attack}), conversation=4004, kind=5)
        package.know(8000 + number, attack, attack)
    package.know(2002, "".join(ATTACKS[:5]))


def expectHarmless(browser, page):
    same(0, browser.run("window.hacks"))
    for address in browser.loads():
        path = address.split("#")[0]
        expect(path.startswith(browser.pages.as_uri()), page + " loaded " + address)
        expect(pathlib.Path(path[len("file://"):]).exists(), page + " loaded what no page names: " + address)
    same([], browser.complaints())
    same(1, len(browser.all("main")))
    same(0, len(browser.all("iframe, object, embed, base, form, link, template, math, .message svg, main script")))
    same([], browser.run("""[...document.querySelectorAll("*")].flatMap(e => e.getAttributeNames())
        .filter(name => name.startsWith("on") || name == "style" || name == "srcdoc")"""))


def HostileTextIsShownAndRunsNowhere(browser):
    names = ["index.html", "statistics.html", "conversations/2002/1.html", "conversations/2002/days.html",
             "conversations/4004/1.html"]
    names += ["conversations/%d/1.html" % (5000 + number) for number in range(len(ATTACKS))]
    for name in names:
        browser.open(name)
        expectHarmless(browser, name)
        same("file:", browser.run("location.protocol"))
    browser.open("conversations/2002/1.html")
    bodies = [browser.run("arguments[0].textContent", body) for body in browser.all(".body")]
    same([shown(attack) for attack in ATTACKS], bodies)
    browser.open("conversations/5000/1.html")
    same(ATTACKS[0], browser.driver.title)
    browser.open("search.html")
    for words in ("hacked", "attack.example", "<script>", "&lt;", "\\u003c"):
        browser.search(words)
        expect(browser.all("#hits li"), "the text itself is found: " + words)
        expectHarmless(browser, "search.html")
    browser.search("hacked")
    for link in [link.get_attribute("href") for link in browser.all("#hits a")][:20]:
        browser.driver.get(link)
        expectHarmless(browser, link)


def hostileFiles(package):
    page = b"<!DOCTYPE html><script>hacked()</script><svg xmlns='http://www.w3.org/2000/svg' onload='hacked()'/>"
    for ending in ("html", "svg", "xhtml", "xml", "mht", "js", "png", "pdf", "txt", "wav"):
        package.say(json.dumps({"mediaUrl": "a/f", "fileName": "x." + ending}), kind=6)
        package.attach("a/x." + ending, page)
    package.say(json.dumps({"mediaUrl": "a/y.png", "thumbUrl": "a/y.svg"}), kind=5)
    package.attach("a/y.png", page)
    package.say(json.dumps({"mediaUrl": "a/z.svg", "thumbUrl": "a/y.svg"}), kind=5)
    package.attach("a/z.svg", page)


def HostileFilesOpenAsNoPage(browser):
    browser.open("conversations/2002/1.html")
    time.sleep(0.5)
    same(0, browser.run("window.hacks"))
    targets = [link.get_attribute("href") for link in browser.all(".files a")]
    same(12, len(targets))
    for target in targets:
        browser.open("index.html")
        browser.driver.get(target)
        time.sleep(0.2)
        same(0, browser.run("window.hacks"))
        same(0, browser.run("document.scripts.length"))


CHECKS = {
    ConversationsOpenPageByPage: conversations,
    DaysLeadToTheirMessages: conversations,
    SearchFindsMessagesAndLeadsToThem: talks,
    SearchGoesThroughAllPartsAndStopsForMore: longTalk,
    PicturesAndVoicesLoadFromTheDisk: media,
    StatisticsDrawTheirPlots: conversations,
    ColoursFollowDarkAndLight: conversations,
    RightToLeftTextStaysInItsMessage: mixedScripts,
    HostileTextIsShownAndRunsNowhere: attacks,
    HostileFilesOpenAsNoPage: hostileFiles,
}


def makePages(program, folder, fill):
    package = Package(os.path.join(folder, "package"))
    fill(package)
    package.write()
    pages = os.path.join(folder, "pages")
    subprocess.run([program, "view", "--from", str(package.folder), "--user", USER, "--to", pages], check=True,
                   stdout=subprocess.DEVNULL, env={**os.environ, "TZ": "UTC"})
    return pathlib.Path(pages)


def check(program, name):
    function = next(function for function in CHECKS if function.__name__ == name)
    with tempfile.TemporaryDirectory(prefix="view-") as folder:
        browser = Browser(folder)
        try:
            browser.pages = makePages(program, folder, CHECKS[function])
            function(browser)
        finally:
            browser.driver.quit()


if __name__ == "__main__":
    if not shutil.which("chromium") or not shutil.which("chromedriver"):
        print("skipped: Chromium is not installed (make browser-tests installs it)")
        sys.exit(SKIPPED)
    check(sys.argv[1], sys.argv[2])
