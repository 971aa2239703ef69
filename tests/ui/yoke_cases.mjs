// A yoke on the virtual cockpit: what the hand on it sends, and what it shows.
import { open, readFile, writeFile } from "node:fs/promises";
import { join } from "node:path";
import { openPage, sizes } from "./browser.mjs";
import { equal, holds, until } from "./case_runner.mjs";
import { Programs } from "./programs.mjs";
import { keyOf, ScriptedBench } from "./scripted_bench.mjs";

const key = keyOf("yoke");
const commandPauseMs = 40;

const atRest = {
  bank: 511.5, pitch: 511.5, targetBank: 512, targetPitch: 512, forceBank: 0, forcePitch: 0, maxBank: 511, maxPitch: 511,
  measuredBank: 0, measuredPitch: 0, motorBank: false, motorPitch: false, held: false, switches: "0".repeat(16), standby: 300, yokeType: 3,
};

function find(bench, selector) {
  return bench.page.locator(`[data-instrument="${key}"] ${selector}`);
}

async function sent(bench, ...expected) {
  await until(() => bench.heard.length >= expected.length, expected.join(", "));
  equal(bench.heard.splice(0), expected.map((command) => `turn ${key} ${command}`), "commands");
}

// Drags the middle of a view by shares of its width, in some steps; still held afterwards.
async function drag(bench, view, right, down, steps = 1) {
  await find(bench, view).scrollIntoViewIfNeeded();
  const { x, y, width, height } = await find(bench, view).boundingBox();
  await bench.page.mouse.move(x + width / 2, y + height / 2);
  await bench.page.mouse.down();
  await bench.page.mouse.move(x + width * (0.5 + right), y + height / 2 + width * down, { steps });
}

// The drawing is 240 units wide; half the travel is 90 to the side.
async function a_drag_draws_both_axes_until_it_is_let_go(bench) {
  await drag(bench, ".yoke-above", 0.1875, 0);
  await sent(bench, "drawRoll 767", "drawPitch 512");
  equal(await find(bench, ".yoke-above .yoke-spring").count(), 1, "springs while it is held");
  await bench.page.mouse.up();
  await sent(bench, "letGo 1");
  equal(await find(bench, ".yoke-spring").count(), 0, "springs");
  await drag(bench, ".yoke-side", 0.2, 0.3); // towards the pilot
  await sent(bench, "drawPitch 128");
  await bench.page.mouse.up();
  await sent(bench, "letGo 1");
}

async function a_long_drag_does_not_flood_the_bench_and_no_axis_waits_for_ever(bench) {
  const start = Date.now();
  await drag(bench, ".yoke-above", 0.4, 0.3, 120);
  const full = (control, raw) => until(() => bench.heard.includes(`turn ${key} ${control} ${raw}`), `${control} ${raw}`);
  await full("drawRoll", 1023);
  await full("drawPitch", 0);
  await bench.page.mouse.up();
  await until(() => bench.heard.at(-1) === `turn ${key} letGo 1`, "the end");
  const most = 2 + (Date.now() - start) / commandPauseMs;
  holds(bench.heard.length <= most, `${bench.heard.length} commands where ${most} are enough`);
}

async function arrow_keys_push_while_they_are_held(bench) {
  const place = find(bench, ".yoke-wheel-place");
  await place.focus();
  await bench.page.keyboard.down("ArrowDown");
  await bench.page.keyboard.down("ArrowDown"); // the key repeats
  await sent(bench, "pushPitch -350");
  await bench.page.keyboard.up("ArrowDown");
  await sent(bench, "pushPitch 0");
  await bench.page.keyboard.down("Shift");
  await bench.page.keyboard.down("ArrowRight");
  await sent(bench, "pushRoll 1000");
  await place.blur(); // somebody switches to another window meanwhile
  await sent(bench, "letGo 1");
  await bench.page.keyboard.up("ArrowRight");
  await bench.page.keyboard.up("Shift");
}

async function it_stands_where_the_bench_says(bench) {
  bench.feed(key, { bank: 1023, pitch: 0, targetBank: 256, forcePitch: 1150, measuredPitch: -255, maxPitch: 255, motorPitch: true });
  const bar = (name) => find(bench, `[data-bar="${name}"]`).textContent();
  await until(async () => (await bar("positionBank")) === "1023", "the position");
  equal([await bar("targetBank"), await bar("springPitch"), await bar("springBank"), await bar("forcePitch")], ["256", "100 %", "0 %", "-50 %"], "bars");
  const style = (view) => find(bench, `[data-view="${view}"]`).evaluate((wheel) => wheel.style.transform);
  holds((await style("above")).includes("rotate(90deg)"), "the wheel is at its right stop");
  equal(await style("side"), "translateX(64px)", "the column is with the pilot");
  equal(await find(bench, "[data-motor]").evaluateAll((lamps) => lamps.map(({ dataset }) => dataset.on)), ["false", "true"], "motor lamps");
}

async function a_switch_is_closed_while_it_is_held_and_an_older_yoke_has_six(bench) {
  const button = find(bench, '[data-contact="9"]');
  await button.hover();
  await bench.page.mouse.down();
  await sent(bench, "switch9 1");
  bench.feed(key, { switches: "0000000001000000" });
  await until(async () => (await button.getAttribute("data-closed")) === "true", "the closed switch");
  await bench.page.mouse.up();
  await sent(bench, "switch9 0");
  bench.feed(key, { yokeType: 1 });
  await until(async () => (await find(bench, "[data-contact]").count()) === 6, "six switches");
}

const yokePort = 5;

// The real bench, with this test at the program's end of the line.
async function a_hand_draws_the_simulated_yoke_against_its_motor(programs, page) {
  const unit = (selector) => page.locator(`[data-instrument="${yokePort}.0"] ${selector}`);
  const send = async (command, ...values) => {
    const line = await open(join(programs.folder, "ports", `COM${yokePort}`), "r+");
    const bytes = [0, 1, 2, 3].flatMap((at) => [(values[at] ?? 0) & 127, (values[at] ?? 0) >> 7]);
    await line.write(Buffer.from([0, 15, command | 128, ...bytes.map((byte) => byte | 128), 255, 255]));
    await line.close();
  };
  const stands = (name, fits) => until(async () => fits(parseFloat(await unit(`[data-bar="${name}"]`).textContent())), name);
  await send(10, 511, 0, 511, 0);
  await send(13, 1);
  await send(14, 1);
  await send(11, 512, 1150, 512, 575);
  await unit('[data-motor="Pitch"][data-on="true"]').waitFor();
  await unit(".yoke-above").scrollIntoViewIfNeeded();
  const { x, y, width } = await unit(".yoke-above").boundingBox();
  await page.mouse.move(x + width / 2, y + width / 2);
  await page.mouse.down();
  await page.mouse.move(x + width * 0.6875, y + width * 0.63, { steps: 5 }); // half the travel either way, to the right and towards the pilot
  await stands("positionBank", (raw) => raw > 670 && raw < 695); // two thirds of it against a strong motor
  await stands("positionPitch", (raw) => raw > 295 && raw < 320); // four fifths against a weaker one
  await stands("forceBank", (percent) => percent > 25 && percent < 40);
  await page.mouse.up();
  await stands("positionBank", (raw) => Math.abs(raw - 512) < 15);
  await stands("positionPitch", (raw) => Math.abs(raw - 512) < 25);
  equal(page.troubles, [], "troubles of the page");
}

async function runWithTheBench(runner, browser, folder) {
  const programs = await Programs.inFolderOf(folder);
  try {
    const file = join(programs.folder, "Default MS-FS.cfg");
    const lines = (await readFile(file, "latin1")).split("\r\n");
    lines[lines.indexOf('"Yoke1"') + 1] = String(yokePort);
    await writeFile(file, lines.join("\r\n"), "latin1");
    const page = await openPage(browser, sizes.desktop);
    await page.goto(await programs.start("bench"));
    const work = a_hand_draws_the_simulated_yoke_against_its_motor;
    await runner.run(work.name.replaceAll("_", " "), () => work(programs, page), page);
    await page.context().close();
  } finally {
    await programs.stopAll();
  }
}

export async function runYokeCases(runner, browser, folder) {
  const page = await openPage(browser, sizes.desktop);
  const bench = await ScriptedBench.behind(page);
  try {
    for (const work of [
      a_drag_draws_both_axes_until_it_is_let_go,
      a_long_drag_does_not_flood_the_bench_and_no_axis_waits_for_ever,
      arrow_keys_push_while_they_are_held,
      it_stands_where_the_bench_says,
      a_switch_is_closed_while_it_is_held_and_an_older_yoke_has_six,
    ]) {
      bench.feed(key, atRest);
      await until(async () => (await find(bench, "[data-contact]").count()) === 16, "a yoke at rest");
      bench.heard.length = 0;
      await runner.run(work.name.replaceAll("_", " "), () => work(bench), page);
    }
    equal(page.troubles, [], "troubles of the page");
  } finally {
    bench.stop();
    await page.context().close();
  }
  await runWithTheBench(runner, browser, folder);
}
