// The board of an IO module on the virtual cockpit: what its controls send, and what it shows.
import { openPage, sizes } from "./browser.mjs";
import { equal, holds, until } from "./case_runner.mjs";
import { keyOf, ScriptedBench } from "./scripted_bench.mjs";

const key = keyOf("io_module");
const commandPauseMs = 50; // between two commands of a slider

// A text of digits that are 0 but for some.
function digits(count, others = {}) {
  return Array.from({ length: count }, (_, number) => others[number] ?? 0).join("");
}

// A1 is a lever, A2 a push button, A4 and A5 an encoder; A8 has lost its second track, which cannot be B1.
const atRest = {
  types: digits(48, { 1: 1, 3: 2, 4: 3, 7: 2, 8: 3 }), contacts: digits(48), switches: digits(48), leds: digits(32),
  masters: digits(32, { 9: 3 }), master1: true, master2: true, power: true, debounce: 3, testSwitch: 23, clicks: 0, pot0: 512,
};

function find(bench, selector) {
  return bench.page.locator(`[data-instrument="${key}"] ${selector}`);
}

async function sent(bench, ...expected) {
  await until(() => bench.heard.length >= expected.length, expected.join(", "));
  equal(bench.heard.splice(0), expected.map((command) => `turn ${key} ${command}`), "commands");
}

async function a_lever_stays_where_it_is_put(bench) {
  const lever = find(bench, '[data-contact="0"]');
  await lever.click();
  await sent(bench, "switch0 1");
  bench.feed(key, { contacts: digits(48, { 0: 1 }) });
  await until(async () => (await lever.getAttribute("aria-checked")) === "true", "the lever up");
  await lever.press("Enter");
  await sent(bench, "switch0 0");
}

async function a_push_button_is_closed_while_it_is_held(bench) {
  const push = find(bench, '[data-contact="1"]');
  await push.hover();
  await bench.page.mouse.down();
  await sent(bench, "switch1 1");
  await bench.page.mouse.move(5, 5); // the finger slides off, but is still down
  equal(bench.heard.length, 0, "commands while it is held");
  await bench.page.mouse.up();
  await sent(bench, "switch1 0");
  await push.focus();
  await bench.page.keyboard.down("Space");
  await bench.page.keyboard.down("Space"); // the key repeats
  await bench.page.keyboard.up("Space");
  await sent(bench, "switch1 1", "switch1 0");
  await push.dblclick(); // faster than a finger: nothing gets lost
  await sent(bench, "switch1 1", "switch1 0", "switch1 1", "switch1 0");
  await push.evaluate((button) => button.click());
  await sent(bench, "switch1 1", "switch1 0");
}

async function an_encoder_of_two_switches_is_one_knob(bench) {
  equal(await find(bench, '[data-switch="4"]').count(), 0, "cells of the second track");
  const knob = find(bench, '[data-knob="encoder3"]');
  await knob.hover();
  await bench.page.mouse.wheel(0, -100);
  await sent(bench, "encoder3 1");
  await knob.press("ArrowLeft");
  await sent(bench, "encoder3 -1");
  equal(await find(bench, "[data-kind]").evaluateAll((cells) => cells.slice(6, 8).map(({ dataset }) => dataset.kind)), ["encoder", "none"], "A8 and B1");
}

async function a_slider_does_not_flood_the_bench_and_ends_where_it_was_left(bench) {
  const slider = find(bench, '[data-fader="pot0"]');
  const { x, y, width, height } = await slider.boundingBox();
  await bench.page.mouse.move(x + width / 2, y + height / 2);
  const start = Date.now();
  await bench.page.mouse.down();
  for (let step = 1; step <= 60; ++step) await bench.page.mouse.move(x + width / 2, y + (height / 2) * (1 - step / 60));
  await bench.page.mouse.up();
  await until(() => bench.heard.at(-1) === `turn ${key} pot0 1023`, "the upper end");
  const most = 2 + (Date.now() - start) / commandPauseMs;
  holds(bench.heard.length <= most, `${bench.heard.length} commands where ${most} are enough`);
  equal(await find(bench, '[data-fader-value="pot0"]').textContent(), "1023", "the figures");
  bench.heard.length = 0;
  const itFollowsTheBenchAgain = () => until(async () => (await slider.inputValue()) === "512", "back to what the bench says");
  await itFollowsTheBenchAgain();
  await slider.press("ArrowUp");
  await sent(bench, "pot0 513");
  await itFollowsTheBenchAgain();
}

async function lamps_show_what_the_module_says(bench) {
  const on = (selector) => find(bench, selector).getAttribute("data-on");
  equal([await on('[data-led="9"]'), await on('[data-switch-lamp="4"]')], ["false", "false"], "dark lamps");
  bench.feed(key, { leds: digits(32, { 9: 1 }), switches: digits(48, { 4: 1 }), master2: false, clicks: 2 });
  await until(async () => (await on('[data-led="9"]')) === "true", "LED B2");
  equal([await on('[data-switch-lamp="4"]'), await on('[data-led="8"]')], ["true", "false"], "lamps of A5 and B1");
  equal(await find(bench, "").getByRole("img", { name: "LED B2, OuterMarker: lit" }).count(), 1, "the LED by its name");
  equal(await find(bench, "[data-note]").allTextContents(), ["Test switch C7", "Debounce 3 ms", "2 clicks wait"], "notes");
  await find(bench, '[data-master="2"]').click();
  await sent(bench, "master2 1");
}

async function labels_stand_at_their_places(bench) {
  for (const [place, label] of Object.entries({ '[data-switch="0"]': "NavLights", '[data-switch="9"] kbd': "Ctrl+G", '[data-switch="22"]': "LED test", '[data-led="0"]': "ParkingBrake" })) {
    holds((await find(bench, place).textContent()).includes(label), `${label} at ${place}`);
  }
  equal(await find(bench, '[data-fader="pot1"]').getAttribute("aria-label"), "Potentiometer 2, Mixture", "the second slider");
}

async function only_the_lamp_that_changes_is_drawn_anew(bench) {
  await bench.page.evaluate((tile) => {
    window.drawn = new Set();
    const note = (changes) => changes.forEach(({ target }) => window.drawn.add((target.closest ? target : target.parentElement).closest("[data-switch]")?.dataset.switch ?? "another part"));
    new MutationObserver(note).observe(document.querySelector(tile), { subtree: true, childList: true, attributes: true, characterData: true });
  }, `[data-instrument="${key}"] .switchboard`);
  bench.feed(key, { switches: digits(48, { 40: 1 }) });
  await until(async () => (await find(bench, '[data-switch-lamp="40"]').getAttribute("data-on")) === "true", "F1");
  equal(await bench.page.evaluate(() => [...window.drawn]), ["40"], "switches that were touched");
}

export async function runIoCases(runner, browser) {
  const page = await openPage(browser, sizes.desktop);
  const bench = await ScriptedBench.behind(page);
  try {
    for (const work of [
      a_lever_stays_where_it_is_put,
      a_push_button_is_closed_while_it_is_held,
      an_encoder_of_two_switches_is_one_knob,
      a_slider_does_not_flood_the_bench_and_ends_where_it_was_left,
      lamps_show_what_the_module_says,
      labels_stand_at_their_places,
      only_the_lamp_that_changes_is_drawn_anew,
    ]) {
      bench.feed(key, atRest);
      await find(bench, '[data-master="2"][aria-checked="true"]').waitFor();
      await find(bench, '[data-on="true"]:not(.power-lamp)').waitFor({ state: "detached" });
      bench.heard.length = 0;
      await runner.run(work.name.replaceAll("_", " "), () => work(bench), page);
    }
    equal(page.troubles, [], "troubles of the page");
  } finally {
    bench.stop();
    await page.context().close();
  }
}
