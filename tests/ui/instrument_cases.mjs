// The faces of all instruments on the virtual cockpit: what they draw, and what their controls send.
import { openPage, sizes } from "./browser.mjs";
import { equal, holds, until } from "./case_runner.mjs";
import { instruments, keyOf, ScriptedBench } from "./scripted_bench.mjs";

const texts = {
  pressureUnit: "inHg", kind: "COM", active: "118.350", standby: "121.500", comActive: "118.350", comStandby: "121.500",
  navActive: "110.30", navStandby: "113.90", code: "1200", code1: "1200", code2: "7000", flightLevel: "054", date: "22 NOV 26",
  elapsed: "1:05:09", upper: "24.5 V", lower: "09:31:07", upperMode: "V", lowerMode: "LT", distance: "12.3", speed: "120", time: "6",
  frequency: "112.450", display: "5000", dme1: "12.3", dme2: "---", source1: "VOR", source2: "ADF", motor: "off",
};
const numbers = [
  "altitude", "pressure", "bank", "pitch", "slip", "card", "bug", "drift", "loc", "slope", "toFrom", "course", "needle", "needle1",
  "needle2", "rotary", "hour", "minute", "second", "wheel", "verticalSpeed", "fuelLeft", "egt", "needle0", "pointer1", "level",
];

function all(names, value) {
  return Object.fromEntries(names.map((name) => [name, value]));
}

function tileOf(bench, face, type) {
  return bench.page.locator(`[data-instrument="${keyOf(face, type)}"]`);
}

async function every_face_is_drawn_for_no_values_and_for_absurd_ones(bench) {
  const tiles = bench.page.locator("[data-instrument]");
  equal(await tiles.count(), instruments.length, "instruments before any value");
  equal(await bench.page.getByText("not simulated").count(), 0, "families without a face");
  const wrong = "\ufffd".repeat(40);
  for (const values of [
    all([...numbers, ...Object.keys(texts)], null),
    { ...all(numbers, -1e300), ...all(Object.keys(texts), wrong), power: true, lit: true },
    { ...all(numbers, 1e300), ...all(Object.keys(texts), ""), power: true, lit: true },
    { ...all(numbers, "text"), ...all(Object.keys(texts), 7), power: true },
  ]) {
    bench.feedAll(values);
    bench.feed(keyOf("radio", 110), { active: "end", power: true });
    await tileOf(bench, "radio", 110).getByText("end", { exact: true }).waitFor();
    equal(await tiles.count(), instruments.length, "instruments");
    const bad = await bench.page.evaluate(() =>
      [...document.querySelectorAll("[data-instrument] *")]
        .filter((each) => /NaN|Infinity|undefined/.test([...each.attributes].map(({ value }) => value).join(" ")))
        .map((each) => `${each.closest("[data-instrument]").dataset.instrument} ${each.outerHTML.slice(0, 120)}`),
    );
    equal(bad, [], "attributes that are no figures");
    equal(bench.page.troubles, [], "troubles of the page");
  }
}

async function what_moves_stays_within_its_case(bench) {
  const vor = tileOf(bench, "vor_indicator", 106);
  bench.feedAll({ ...texts, ...all(numbers, 0), power: true, lit: true, slopeValid: true, toFrom: 1 });
  bench.feed(keyOf("vor_indicator", 106), { loc: 0.5, slope: -0.5 });
  const place = (name) => vor.locator(`[data-needle="${name}"]`).getAttribute("data-place");
  await until(async () => (await place("loc")) === "20.0" && (await place("slope")) === "-20.0", "half deflection");
  bench.feed(keyOf("vor_indicator", 106), { loc: 50, slope: -50 });
  await until(async () => (await place("loc")) === "40.0" && (await place("slope")) === "-40.0", "bars at their stops");
}

async function the_flags_tell_what_is_not_to_be_trusted(bench) {
  const shown = (face, flag, type) => tileOf(bench, face, type).locator(`[data-flag="${flag}"]`).isVisible();
  const key = keyOf("vor_indicator", 106);
  for (const [toFrom, slopeValid, nav, slope] of [
    [0, true, true, false],
    [1, false, false, true],
    [2, true, false, false],
  ]) {
    bench.feed(key, { toFrom, slopeValid });
    const what = `flags for ${toFrom}, ${slopeValid}`;
    await until(async () => (await shown("vor_indicator", "nav", 106)) === nav && (await shown("vor_indicator", "gs", 106)) === slope, what);
  }
  bench.feed(keyOf("attitude_indicator"), { inop: true });
  await until(() => shown("attitude_indicator", "gyro"), "the gyro's flag");
}

async function a_card_goes_through_north_the_short_way(bench) {
  const key = keyOf("heading_indicator");
  const card = tileOf(bench, "heading_indicator").locator('[data-turn="card"]');
  const angle = async () => Number(/rotate\((.*)deg/.exec(await card.getAttribute("style"))[1]);
  bench.feed(key, { card: 350 });
  await until(async () => Math.abs((await angle()) % 360) === 10 || Math.abs((await angle()) % 360) === 350, "350 degrees");
  const before = await angle();
  bench.feed(key, { card: 10 });
  await until(async () => (await angle()) !== before, "10 degrees");
  equal((await angle()) - before, -20, "the way from 350 to 10 degrees");
}

async function displays_go_dark_without_power(bench) {
  bench.feedAll({ ...texts, ...all(numbers, 1), power: true, lit: true, on: true });
  const digits = bench.page.locator('[data-display]:not([data-display="altitude"])');
  const visible = async () => {
    const each = await digits.all();
    const seen = await Promise.all(each.map(async (one) => (await one.isVisible()) && (await one.textContent()).trim() !== ""));
    return seen.filter((is) => is).length;
  };
  await until(async () => (await visible()) >= 30, "lit displays");
  // The devices blank their digits themselves but for these: they keep their texts here.
  const own = instruments.filter(({ face }) => !["needle_gauge", "engine_cluster"].includes(face));
  for (const { key } of own) bench.feed(key, { power: false });
  bench.feed(keyOf("needle_gauge"), { display: "" });
  await until(async () => (await visible()) === 0, "no digit left");
}

// Commands that came since the last look.
async function sent(bench, expected) {
  await until(() => bench.heard.length >= expected.length, expected.join(", "));
  equal(bench.heard.splice(0), expected, "commands");
}

async function a_knob_turns_by_wheel_key_click_and_drag(bench) {
  const radio = keyOf("radio", 110);
  bench.heard.length = 0;
  for (const name of ["coarse", "fine"]) {
    const knob = tileOf(bench, "radio", 110).locator(`[data-knob="${name}"]`);
    const line = (amount) => `turn ${radio} ${name} ${amount}`;
    await knob.scrollIntoViewIfNeeded();
    const { x, y, width, height } = await knob.boundingBox();
    const edge = 4; // on the outer knob beside the inner one
    await bench.page.mouse.move(x + width - edge, y + height / 2);
    await bench.page.mouse.wheel(0, -100);
    await sent(bench, [line(1)]);
    await bench.page.mouse.wheel(0, 100);
    await sent(bench, [line(-1)]);
    await bench.page.mouse.click(x + width - edge, y + height / 2);
    await bench.page.mouse.click(x + edge, y + height / 2);
    await sent(bench, [line(1), line(-1)]);
    await knob.focus();
    for (const key of ["ArrowUp", "ArrowLeft", "PageUp", "a"]) await bench.page.keyboard.press(key);
    await sent(bench, [line(1), line(-1), line(10)]);
    await bench.page.mouse.move(x + edge, y + height / 2);
    await bench.page.mouse.down();
    await bench.page.mouse.move(x + edge + 22, y + height / 2);
    await bench.page.mouse.up();
    await sent(bench, [line(3)]);
    holds((await knob.getAttribute("aria-valuenow")) === "13", "the knob tells how far it was turned");
  }
}

async function switches_and_buttons_say_what_they_set(bench) {
  const key = keyOf("bk_transponder");
  const tile = tileOf(bench, "bk_transponder");
  bench.feed(key, { rotary: 4, ident: false });
  const mode = tile.getByRole("radiogroup", { name: "Mode switch" });
  await until(async () => (await mode.getByRole("radio", { name: "ON" }).getAttribute("aria-checked")) === "true", "ON");
  await mode.getByRole("radio", { name: "STBY" }).click();
  await sent(bench, [`turn ${key} rotary 2`]);
  await mode.getByRole("radio", { name: "ON" }).focus();
  await bench.page.keyboard.press("ArrowRight");
  await sent(bench, [`turn ${key} rotary 5`]);
  bench.feed(key, { rotary: 5 });
  await until(async () => (await mode.getByRole("radio", { name: "ALT" }).getAttribute("aria-checked")) === "true", "ALT");
  await bench.page.keyboard.press("ArrowRight"); // there is nothing beyond
  await tile.getByRole("button", { name: "Ident" }).press("Enter");
  await tile.getByRole("button", { name: "Ident" }).click();
  await sent(bench, [`turn ${key} ident 1`, `turn ${key} ident 1`]);
}

// The controls that the simulated devices obey, by the face that must offer them.
const offered = {
  altimeter: "pressure", heading_indicator: "heading bug", vor_indicator: "obs", adf_indicator: "card", rmi: "source1 source2",
  radio: "coarse fine swap", com_nav_radio: "comCoarse comFine navCoarse navFine comSwap navSwap on",
  adf_radio: "coarse fine swap mode bfo", transponder: "digit1 digit2 digit3 digit4 select rotary ident",
  bk_transponder: "digit1 digit2 digit3 digit4 rotary ident vfr", boeing_clock: "elapsed setHour setMinute", cessna_clock: "upper lower",
  dme: "rotary", bk_dme: "rotary coarse fine", autopilot: "ap hdg nav apr rev alt up down baro arm coarse fine",
  audio_panel: "com1 com2 nav1 nav2 mkr dme adf ics aux spkr rotary", trim_wheel: "wheel",
};

async function every_control_of_every_device_can_be_reached(bench) {
  for (const [face, names] of Object.entries(offered)) {
    for (const name of names.split(" ")) {
      const control = tileOf(bench, face).locator(`[data-knob="${name}"], [data-button="${name}"], [data-rotary="${name}"]`);
      equal(await control.count(), 1, `${face} ${name}`);
      const tabs = control.locator("xpath=descendant-or-self::*[@tabindex='0' or (self::button and not(@tabindex))]");
      holds((await tabs.count()) >= 1, `${face} ${name} is out of the keyboard's reach`);
    }
  }
}

async function only_the_instrument_that_changes_is_drawn_anew(bench) {
  await bench.page.evaluate(() => {
    window.touched = new Set();
    new MutationObserver((changes) => {
      for (const { target } of changes) {
        const element = target.nodeType === Node.TEXT_NODE ? target.parentElement : target;
        window.touched.add(element.closest("[data-instrument]")?.dataset.instrument ?? "page");
      }
    }).observe(document.querySelector("main"), { subtree: true, childList: true, attributes: true, characterData: true });
  });
  const key = keyOf("adf_indicator");
  const needle = tileOf(bench, "adf_indicator").locator('[data-turn="needle"]');
  for (const degrees of [10, 20, 30]) bench.feed(key, { needle: degrees });
  await until(async () => (await needle.getAttribute("data-degrees")) === "30", "the needle at 30 degrees");
  equal(await bench.page.evaluate(() => [...window.touched]), [key], "instruments touched");
}

export async function runInstrumentCases(runner, browser) {
  const page = await openPage(browser, sizes.desktop);
  const bench = await ScriptedBench.behind(page);
  try {
    for (const work of [
      every_face_is_drawn_for_no_values_and_for_absurd_ones,
      what_moves_stays_within_its_case,
      the_flags_tell_what_is_not_to_be_trusted,
      a_card_goes_through_north_the_short_way,
      displays_go_dark_without_power,
      a_knob_turns_by_wheel_key_click_and_drag,
      switches_and_buttons_say_what_they_set,
      every_control_of_every_device_can_be_reached,
      only_the_instrument_that_changes_is_drawn_anew,
    ]) {
      await runner.run(work.name.replaceAll("_", " "), () => work(bench), page);
    }
  } finally {
    bench.stop();
    await page.context().close();
  }
}
