// Runs named cases one after the other and tells which failed.
import { mkdir } from "node:fs/promises";
import { join } from "node:path";

const caseLimitMs = 60_000;

export class CaseRunner {
  // Pictures of pages at the time of a failure go into `pictures`.
  constructor(pictures) {
    this.pictures = pictures;
    this.passed = 0;
    this.failures = [];
  }

  async run(name, work, page) {
    const start = performance.now();
    let timer;
    const late = new Promise((_, failed) => {
      timer = setTimeout(() => failed(new Error(`not done in ${caseLimitMs} ms`)), caseLimitMs);
    });
    try {
      await Promise.race([work(), late]);
      this.passed += 1;
      console.log(`  ok    ${name} (${Math.round(performance.now() - start)} ms)`);
    } catch (error) {
      this.failures.push(name);
      console.log(`  FAIL  ${name}\n${String(error?.stack ?? error).replace(/^/gm, "        ")}`);
      await this.#picture(name, page);
    } finally {
      clearTimeout(timer);
    }
  }

  summary() {
    console.log(`${this.passed} passed, ${this.failures.length} failed`);
    for (const name of this.failures) {
      console.log(`  failed: ${name}`);
    }
    return this.failures.length === 0;
  }

  async #picture(name, page) {
    if (page && !page.isClosed()) {
      await mkdir(this.pictures, { recursive: true });
      const path = join(this.pictures, `${name.replaceAll(/\W+/g, "_")}.png`);
      await page.screenshot({ path, fullPage: true }).catch(() => undefined);
      console.log(`        see ${path}`);
    }
  }
}

export function equal(actual, expected, what = "") {
  const [a, b] = [JSON.stringify(actual), JSON.stringify(expected)];
  if (a !== b) {
    throw new Error(`${what} is ${a}, expected ${b}`);
  }
}

export function holds(condition, what) {
  if (!condition) {
    throw new Error(what);
  }
}

// Waits until `look` gives something true, and gives that.
export async function until(look, what, limitMs = 15_000) {
  const deadline = performance.now() + limitMs;
  for (;;) {
    const seen = await look();
    if (seen) {
      return seen;
    }
    if (performance.now() > deadline) {
      throw new Error(`waited ${limitMs} ms in vain: ${what}`);
    }
    await new Promise((done) => setTimeout(done, 50));
  }
}
