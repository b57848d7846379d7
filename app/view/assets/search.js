// The search over all messages. Each part of the index is a script beside this page that calls takePart(): pages on the
// disk may not read files. Parts are loaded when the search comes to them, and stay.
"use strict";

(() => {
    const HITS_AT_ONCE = 100;
    const BEFORE_HIT = 60;
    const AFTER_HIT = 200;
    // Of a part's list of messages.
    const CONVERSATION = 0, PAGE = 1, NUMBER = 2, WHEN = 3, SENDER = 4, TEXT = 5;

    const byId = (id) => document.getElementById(id);
    const query = byId("query"), state = byId("state"), hits = byId("hits"), more = byId("more");
    const progress = byId("progress");
    const partCount = Number(byId("search").dataset.parts);
    const parts = new Map();
    let current = null; // the search that is going on; an earlier one ends when it sees another

    // Upper and lower case, composed and decomposed letters, and both forms of the Greek sigma count as the same. Scripts
    // without case are compared as they are.
    const fold = (text) => text.normalize("NFC").toLowerCase().replaceAll("\u03c2", "\u03c3");

    globalThis.takePart = (number, part) => parts.set(number, part);

    const load = (number) =>
        new Promise((resolve, reject) => {
            if (parts.has(number)) return resolve(parts.get(number));
            const script = document.createElement("script");
            script.src = "search/" + number + ".js";
            script.addEventListener("load", () => {
                script.remove();
                if (parts.has(number)) resolve(parts.get(number));
                else reject(new Error("is damaged"));
            });
            script.addEventListener("error", () => reject(new Error("is missing")));
            document.head.append(script);
        });

    // Lets the page draw and answer.
    const pause = () => new Promise((resolve) => setTimeout(resolve));

    // Where the hit at `index` of the folded text stands in `text`: folding can change the number of units.
    const place = (text, index) => {
        let folded = 0;
        let at = 0;
        for (const character of text) {
            if (folded >= index) break;
            folded += character.toLowerCase().length;
            at += character.length;
        }
        return at;
    };

    // A cut through a pair of surrogates would show half of a character.
    const cut = (text, at) => {
        const code = text.charCodeAt(at);
        return code >= 0xdc00 && code <= 0xdfff ? at - 1 : at;
    };

    const element = (name, content, className) => {
        const made = document.createElement(name);
        made.append(...content);
        if (className) made.className = className;
        return made;
    };

    const snippet = (message, folded, index) => {
        const text = message[TEXT].normalize("NFC");
        const first = place(text, index);
        const end = place(text, index + folded.length);
        const from = cut(text, Math.max(0, first - BEFORE_HIT));
        const to = cut(text, Math.min(text.length, end + AFTER_HIT));
        const line = element("p", [
            (from > 0 ? "\u2026" : "") + text.slice(from, first),
            element("mark", [text.slice(first, end)]),
            text.slice(end, to) + (to < text.length ? "\u2026" : ""),
        ], "body");
        line.dir = "auto";
        return line;
    };

    const show = (part, message, folded, index) => {
        const [id, name] = part.conversations[message[CONVERSATION]];
        const link = element("a", [element("bdi", [name])]);
        link.href = "conversations/" + id + "/" + message[PAGE] + ".html#m" + message[NUMBER];
        const about = element("p", [element("bdi", [message[SENDER]]), ", " + message[WHEN]], "about");
        hits.append(element("li", [element("p", [link]), about, snippet(message, folded, index)]));
    };

    const say = (search, words) => {
        progress.value = search.part - 1;
        const found = search.found === 1 ? "1 message found" : search.found.toLocaleString("en") + " messages found";
        state.textContent = found + words;
    };

    const searchPart = (search, part) => {
        for (; search.message < part.messages.length; ++search.message) {
            if (search.found === search.limit) return false;
            const message = part.messages[search.message];
            const index = fold(message[TEXT]).indexOf(search.folded);
            if (index < 0) continue;
            ++search.found;
            show(part, message, search.folded, index);
        }
        return true;
    };

    const run = async (search) => {
        more.hidden = true;
        progress.hidden = false;
        for (; search.part <= partCount; ++search.part, search.message = 0) {
            const part = await load(search.part);
            if (search !== current) return;
            if (!searchPart(search, part)) {
                say(search, " so far");
                progress.hidden = true;
                more.hidden = false;
                return;
            }
            say(search, ", searching \u2026");
            await pause();
            if (search !== current) return;
        }
        say(search, "");
        progress.hidden = true;
    };

    const go = (search) => {
        run(search).catch((error) => {
            if (search === current) say(search, "; part " + search.part + " of the index " + error.message);
        });
    };

    const start = () => {
        const folded = fold(query.value.trim());
        hits.replaceChildren();
        more.hidden = true;
        progress.hidden = true;
        state.textContent = "";
        current = null;
        if (folded === "") return;
        current = { folded, part: 1, message: 0, found: 0, limit: HITS_AT_ONCE };
        progress.max = partCount;
        go(current);
    };

    byId("start").addEventListener("click", start);
    query.addEventListener("keydown", (event) => {
        if (event.key === "Enter") start();
    });
    more.addEventListener("click", () => {
        current.limit += HITS_AT_ONCE;
        go(current);
    });
    query.focus();
})();
