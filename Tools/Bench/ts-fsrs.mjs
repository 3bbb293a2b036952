// Measures ts-fsrs, and shows what it makes of a sequence of ratings.
//
//   node ts-fsrs.mjs PACKAGE measure next|repeat short|long MIX   nanoseconds per call, one pass a line
//   node ts-fsrs.mjs PACKAGE follow RATING…                       stability and days after each
//
// "short" is the scheduler with short-term steps, "long" the one without. MIX has a review on each
// line, as tavik-bench-learning writes it.
import { readFileSync } from "node:fs";
import { resolve } from "node:path";
import { pathToFileURL } from "node:url";

const warmUpMilliseconds = 1500;
const passes = 20;
const millisecondsPerDay = 86400000;

const [directory, command, ...rest] = process.argv.slice(2);
const { createEmptyCard, fsrs, State } = await import(
    pathToFileURL(resolve(directory, "dist/index.mjs"))
);

function scheduler(hasShortTerm) {
    return fsrs({ enable_fuzz: false, enable_short_term: hasShortTerm });
}

function mixedReview(line) {
    const [state, rating, stability, difficulty, reps, lapses, due, last, now] = line
        .split(" ")
        .map(Number);
    const card = {
        due: new Date(due),
        stability,
        difficulty,
        elapsed_days: 0,
        scheduled_days: 0,
        reps,
        lapses,
        state,
        last_review: last === 0 ? undefined : new Date(last),
    };
    return { card, rating, now: new Date(now) };
}

// Each process measures one function of one scheduler, so that the engine may specialise it.
function measure(name, kind, file) {
    const library = scheduler(kind === "short");
    const mix = readFileSync(file, "utf8").trimEnd().split("\n").map(mixedReview);
    let sum = 0;
    const pass =
        name === "next"
            ? () => {
                  for (const { card, rating, now } of mix)
                      sum += library.next(card, now, rating).card.stability;
              }
            : () => {
                  for (const { card, now } of mix) sum += library.repeat(card, now)[4].card.stability;
              };
    for (const began = performance.now(); performance.now() - began < warmUpMilliseconds; ) pass();
    for (let i = 0; i < passes; ++i) {
        const began = performance.now();
        pass();
        console.log(((performance.now() - began) * 1e6) / mix.length);
    }
    if (!Number.isFinite(sum)) throw new Error("a stability is no number");
}

// Every review is on the day the card is due. The first is left to the scheduler without short-term
// steps, by which a word that is known goes straight into the long-term cycle.
function follow(ratings) {
    const [first, later] = [scheduler(false), scheduler(true)];
    const begin = new Date(Date.UTC(2026, 0, 1));
    let card = createEmptyCard(begin);
    for (const rating of ratings) {
        const now = card.due;
        card = (card.state === State.New ? first : later).next(card, now, rating).card;
        const days = Math.floor((card.due - now) / millisecondsPerDay);
        console.log(card.stability, days);
    }
}

if (command === "measure") measure(...rest);
else follow(rest.map(Number));
