// Tells the harness where words are, and does what it asks for.

const load = new URLSearchParams(location.search).get("load");
let pointer = null;
addEventListener("mousemove", (event) => {
    pointer = { x: event.clientX, y: event.clientY, scale: devicePixelRatio };
});

function textNodes(root) {
    const walker = root.ownerDocument.createTreeWalker(root, NodeFilter.SHOW_TEXT);
    const nodes = [];
    while (walker.nextNode()) nodes.push(walker.currentNode);
    return nodes;
}

function nthIndex(text, part, occurrence) {
    let index = -1;
    for (let i = 0; i < occurrence; ++i) {
        index = text.indexOf(part, index + 1);
        if (index < 0) throw new Error(`no ${part}`);
    }
    return index;
}

/// The range of what is at `index` in the text of all `nodes`, `length` units long.
function rangeIn(nodes, index, length) {
    const range = nodes[0].ownerDocument.createRange();
    let begin = 0;
    for (const node of nodes) {
        const end = begin + node.length;
        if (index >= begin && index < end) range.setStart(node, index - begin);
        if (index + length > begin && index + length <= end) range.setEnd(node, index + length - begin);
        begin = end;
    }
    return range;
}

/// The rectangles of the lines of a text in a field, which has no ranges. Its font has one width.
function rectanglesInField(field, index, length) {
    const style = getComputedStyle(field);
    const context = document.createElement("canvas").getContext("2d");
    context.font = `${style.fontSize} ${style.fontFamily}`;
    const before = field.value.slice(0, index).split("\n");
    const box = field.getBoundingClientRect();
    const left = box.left + parseFloat(style.borderLeftWidth) + parseFloat(style.paddingLeft)
        + context.measureText(before.at(-1)).width;
    const lines = field.rows ?? 1;
    const height = (field.clientHeight - 2 * parseFloat(style.paddingTop)) / lines;
    const top = box.top + parseFloat(style.borderTopWidth) + parseFloat(style.paddingTop)
        + (before.length - 1) * height;
    const width = context.measureText(field.value.slice(index, index + length)).width;
    return [new DOMRect(left, top, width, height)];
}

/// The rectangles of the lines of the first `length` units of `text`.
function rectangles(root, text, occurrence, length) {
    if (root.value !== undefined)
        return rectanglesInField(root, nthIndex(root.value, text, occurrence), length);
    const nodes = textNodes(root);
    const index = nthIndex(nodes.map((node) => node.data).join(""), text, occurrence);
    const range = rangeIn(nodes, index, length);
    return [...range.getClientRects()].filter((rectangle) => rectangle.width > 0);
}

const frames = () => new Promise((done) => requestAnimationFrame(() => requestAnimationFrame(done)));

function elementOf({ element, frame }) {
    const outer = frame ? document.querySelector(frame) : null;
    return { outer, root: (outer ? outer.contentDocument : document).querySelector(element) };
}

/// Scrolls `text` in the element to the middle of the window.
async function show(spot) {
    const { outer, root } = elementOf(spot);
    if (outer || root.value !== undefined) {
        (outer ?? root).scrollIntoView({ block: "center" });
    } else {
        const [box] = rectangles(root, spot.text, spot.occurrence, spot.text.length);
        scrollBy(0, box.top + box.height / 2 - innerHeight / 2);
    }
    await frames();
}

/// Where to press, to release and to click for the text, in physical pixels of the page.
function locate(spot) {
    const { outer, root } = elementOf(spot);
    const { text, occurrence } = spot;
    const at = outer ? outer.getBoundingClientRect() : { left: 0, top: 0 };
    const border = outer ? 2 : 0;
    const scale = devicePixelRatio;
    const point = (x, y) => [(x + at.left + border) * scale, (y + at.top + border) * scale];
    const found = rectangles(root, text, occurrence, text.length);
    const [two] = rectangles(root, text, occurrence, 2);
    const first = found[0];
    const last = found.at(-1);
    return {
        outside: point(first.left - 1, first.top + first.height / 2),
        start: point(first.left + 1, first.top + first.height / 2),
        second: point(two.right - 1, two.top + two.height / 2),
        end: point(last.right - 1, last.top + last.height / 2),
        // Not its middle, so that a later click there is no third one here.
        inside: point(first.left + first.width / 4, first.top + first.height / 2),
    };
}

const commands = {
    show,
    locate,
    scale: () => devicePixelRatio,
    pointer() {
        const answer = pointer;
        pointer = null;
        return answer;
    },
    go({ url }) {
        setTimeout(() => (location.href = url));
    },
    // Nothing is selected any more, and nothing has the focus.
    clear() {
        for (const field of document.querySelectorAll("input, textarea"))
            field.setSelectionRange(0, 0);
        for (const frame of document.querySelectorAll("iframe")) {
            frame.contentDocument.activeElement?.blur();
            frame.contentWindow.getSelection().removeAllRanges();
        }
        document.activeElement?.blur();
        getSelection().removeAllRanges();
    },
    /// Puts the focus there, and selects the beginning.
    focus({ element }) {
        document.querySelector(element).focus();
        document.querySelector(element).setSelectionRange(0, 2);
    },
    selectedInField({ element }) {
        const field = document.querySelector(element);
        return field.value.slice(field.selectionStart, field.selectionEnd);
    },
};

async function serve() {
    for (;;) {
        const response = await fetch(`/command?load=${load}`);
        if (response.status !== 200) continue;
        const command = await response.json();
        let answer;
        try {
            answer = { value: (await commands[command.name](command)) ?? null };
        } catch (error) {
            answer = { error: String(error) };
        }
        await fetch(`/answer?load=${load}`, { method: "POST", body: JSON.stringify(answer) });
    }
}

addEventListener("load", serve);
