// The page alone, with a scripted program behind it: drawing, input, boxes, and what it shows when the program goes.
import { equal, holds, until } from "./case_runner.mjs";
import { openPage, sizes } from "./browser.mjs";
import { curvePanel, everyKind, ioPanel, portPanel, runPanel, startPanel } from "./sample_panels.mjs";
import { address, control, ScriptedProgram } from "./scripted_program.mjs";

async function open(browser, panels, size) {
  const page = await openPage(browser, size);
  const program = await ScriptedProgram.behind(page);
  program.show(...panels);
  await page.goto(address);
  await page.locator('[data-link="good"]').waitFor();
  return { page, program };
}

const control_of = (page, panel, name) => page.locator(`[data-panel="${panel}"] [data-control="${name}"]`);

// The messages that the page has sent since the last call.
function heard(program) {
  return program.heard.splice(0);
}

async function expectHeard(program, ...messages) {
  await until(() => program.heard.length >= messages.length, `messages ${JSON.stringify(messages)}`, 3000).catch(() => undefined);
  equal(heard(program), messages, "what the page has sent");
}

async function every_kind_of_control_shows_and_acts({ page, program }) {
  const on = (name) => control_of(page, "Sampler", name);
  const says = (name, event, more = {}) => ({ type: "control", panel: "Sampler", control: name, event, ...more });
  equal(await on("Number").textContent(), "12.5", "read-only field");
  await on("Text").fill("new \"name\" ü");
  equal(heard(program), [], "what goes out while typing");
  await on("Text").press("Enter");
  await expectHeard(program, says("Text", "change", { text: 'new "name" ü' }));
  await on("Text").fill("left alone");
  await on("Text").press("Escape");
  equal(await on("Text").inputValue(), 'old', "field after Escape");
  await page.getByLabel("Plate").selectOption({ label: "second" });
  await expectHeard(program, says("Combo", "change", { value: 1 }));
  await page.getByLabel("Reverse").check();
  await expectHeard(program, says("Check", "click", { value: 1 }));
  await page.getByLabel("Right").check();
  await expectHeard(program, says("OptionB", "click", { value: 1 }));
  await on("Slide").focus();
  await on("Slide").press("ArrowRight");
  await expectHeard(program, says("Slide", "change", { value: 4 }));
  equal(await on("Level").getAttribute("value"), "4", "progress");
  await page.getByRole("tab", { name: "More" }).click();
  equal(await on("Lines").locator("li").allTextContents(), ["a  b", "c", "d"], "lines");
  await on("Lines").locator("li").nth(2).click();
  await expectHeard(program, says("Lines", "click", { value: 2 }));
  await on("Lines").press("ArrowDown");
  await expectHeard(program, says("Lines", "click", { value: 1 }));
  await on("Lines").locator("li").nth(0).dblclick();
  equal(heard(program).pop(), says("Lines", "double_click", { value: 0 }), "last message");
  await on("Push").click();
  await expectHeard(program, says("Push", "click"));
}

async function a_field_keeps_what_is_typed_and_then_shows_what_the_program_made_of_it({ page, program }) {
  const text = control_of(page, "Sampler", "Text");
  await text.fill("typed");
  program.change("Sampler", control("text_box", "Text", { caption: "Name", text: "from elsewhere" }));
  program.change("Sampler", control("text_box", "Number", { caption: "Value", text: "99.0" }));
  await page.locator('[data-control="Number"]', { hasText: "99.0" }).waitFor();
  equal(await text.inputValue(), "typed", "field while typing");
  await text.press("Enter");
  equal(await text.inputValue(), "typed", "field right after Enter");
  program.change("Sampler", control("text_box", "Text", { caption: "Name", text: "corrected" }));
  await until(async () => (await text.inputValue()) === "corrected", "the corrected text");
  // A refused click: the program tells the state that holds.
  await page.getByLabel("Reverse").click();
  program.change("Sampler", control("check_box", "Check", { caption: "Reverse", value: 0 }));
  await until(async () => !(await page.getByLabel("Reverse").isChecked()), "the box cleared again");
}

async function hidden_and_disabled_controls_follow_the_program({ page, program }) {
  const run = control_of(page, "frmStatus", "cmdRun");
  holds(await run.isDisabled(), "Run is disabled while running");
  equal(await control_of(page, "frmStatus", "cmdShowECStatus").count(), 0, "hidden button");
  program.change("frmStatus", control("command_button", "cmdRun", { caption: "Run" }),
    control("indicator", "BoxRun", { text: "Halted", colour: 49152 }),
    control("command_button", "cmdShowECStatus", { caption: "Engine cluster" }));
  await control_of(page, "frmStatus", "cmdShowECStatus").waitFor();
  holds(await run.isEnabled(), "Run is enabled when halted");
  equal(await control_of(page, "frmStatus", "BoxRun").textContent(), "Halted", "state");
}

async function the_top_box_keeps_the_keyboard_and_is_answered_first({ page, program }) {
  const stop = control_of(page, "frmStatus", "cmdStop");
  await stop.focus();
  program.boxes({ id: 4, kind: "message", text: "below", preset: "" },
    { id: 5, kind: "question", text: "Error 9\r\nContinue?", preset: "" });
  const box = page.locator("[data-box]");
  await box.waitFor();
  equal(await box.getAttribute("data-box"), "5", "the box in front");
  equal(await box.locator("#box-text").textContent(), "Error 9\nContinue?", "its text");
  equal(await box.getByRole("button").allTextContents(), ["Yes", "No"], "its answers");
  for (let step = 0; step < 5; ++step) {
    await page.keyboard.press("Tab");
    holds(await page.evaluate(() => document.activeElement.closest("[data-box]") !== null), "the keyboard stays in the box");
  }
  holds(await stop.evaluate((element) => element.closest("[inert]") !== null), "the panels rest meanwhile");
  await page.keyboard.press("Escape");
  await box.getByRole("button", { name: "No" }).click();
  await expectHeard(program, { type: "answer", id: 5, answer: "no" });
  program.boxes({ id: 4, kind: "message", text: "below", preset: "" });
  await page.locator('[data-box="4"]').waitFor();
  await until(async () => {
    await page.keyboard.press("Escape");
    return program.heard.length > 0;
  }, "the message answered by Escape");
  equal(heard(program)[0], { type: "answer", id: 4, answer: "ok" }, "answer");
  program.boxes();
  await box.waitFor({ state: "detached" });
  await until(() => stop.evaluate((element) => element === document.activeElement), "the keyboard back where it was");
}

async function keys_pressed_while_a_box_comes_up_do_not_answer_it({ page, program }) {
  await page.evaluate(() => {
    // Presses Enter in the very moment that the box is there.
    new MutationObserver((_, observer) => {
      const button = document.querySelector("[data-box] button");
      if (button) {
        observer.disconnect();
        window.taken = !button.dispatchEvent(new KeyboardEvent("keydown", { key: "Enter", bubbles: true, cancelable: true }));
      }
    }).observe(document.body, { childList: true, subtree: true });
  });
  program.boxes({ id: 1, kind: "question", text: "Sure?", preset: "" });
  await page.locator("[data-box]").waitFor();
  await until(() => page.evaluate(() => window.taken !== undefined), "the early key");
  equal(await page.evaluate(() => window.taken), true, "whether the early key was held back");
  program.boxes();
}

async function a_text_is_asked_for_and_can_be_cancelled({ page, program }) {
  program.boxes({ id: 1, kind: "input", text: "New name:", preset: "plate 1" });
  const field = page.getByRole("textbox", { name: "New name:" });
  equal(await field.inputValue(), "plate 1", "preset");
  await field.fill("plate 2");
  await until(async () => {
    await field.press("Enter");
    return program.heard.length > 0;
  }, "the answer by Enter");
  equal(heard(program)[0], { type: "answer", id: 1, answer: "ok", text: "plate 2" }, "answer");
  program.boxes({ id: 2, kind: "input", text: "New name:", preset: "" });
  await page.locator('[data-box="2"]').getByRole("button", { name: "Cancel" }).click();
  await expectHeard(program, { type: "answer", id: 2, answer: "cancel" });
  program.boxes();
}

async function a_lost_connection_is_shown_at_once_and_mends_itself({ page, program }) {
  program.answers = false;
  const start = performance.now();
  program.hangUp();
  await page.locator('[data-link="bad"]').waitFor();
  holds(performance.now() - start < 1000, "shown at once");
  await page.getByRole("alert").waitFor();
  equal(await page.locator("[data-stale]").getAttribute("data-stale"), "true", "stale mark");
  holds(await control_of(page, "frmStatus", "cmdStop").evaluate((element) => element.closest("[inert]") !== null), "commands rest");
  program.snapshot.panels = [runPanel(), portPanel()];
  program.answers = true;
  await page.locator('[data-link="good"]').waitFor({ timeout: 4000 });
  await page.locator('[data-panel="SimCom"]').waitFor();
  equal(await page.locator("[data-stale]").getAttribute("data-stale"), "false", "stale mark");
}

async function a_program_that_falls_silent_is_shown_within_three_seconds({ page, program }) {
  program.stopBeating();
  await page.locator("[data-stale=true]").waitFor({ timeout: 4000 });
  await page.getByText("Values may be old").first().waitFor();
  program.tell({ type: "beat", count: 1 });
  await page.locator("[data-stale=false]").waitFor({ timeout: 1000 });
}

async function minimised_panels_wait_in_the_task_bar({ page, program }) {
  await page.getByRole("button", { name: "Minimise Active Offsets" }).click();
  await expectHeard(program, { type: "minimise", panel: "SimCom" });
  const window = (name, title, state) => ({ name, title, state, modal: false });
  program.tell({ type: "windows", windows: [window("SimCom", "Active Offsets", "minimised"), window("frmStatus", "Run", "shown")] });
  await page.locator('[data-panel="SimCom"]').waitFor({ state: "detached" });
  program.tell({ type: "windows", windows: [window("SimCom", "Active Offsets", "minimised"), window("frmStatus", "Run", "minimised")] });
  program.tell({ type: "changes", panel: "frmStatus", controls: [{ control: "BoxRun", caption: "State", text: "Halted", colour: 49152 }] });
  await page.locator('[data-task="frmStatus"] [data-lamp="BoxRun"]', { hasText: "Halted" }).waitFor();
  await page.locator('[data-task="SimCom"]').click();
  await expectHeard(program, { type: "activate", panel: "SimCom" });
}

async function a_board_keeps_its_columns_and_is_silent_when_minimised({ page, program }) {
  const box = (index) => page.locator(`[data-control="boxSwitchIndicator"][data-index="${index}"]`).boundingBox();
  for (const size of Object.values(sizes)) {
    await page.setViewportSize(size);
    const [first, last, below] = [await box(0), await box(7), await box(8)];
    equal([last.y, below.x], [first.y, first.x], `places in a window of ${size.width}`);
    holds(below.y > first.y, "the second row below the first");
  }
  program.tell({ type: "windows", windows: [{ name: "frmStatusIOM", title: "IO module #1", state: "minimised", modal: false }] });
  await page.locator('[data-task="frmStatusIOM"] [data-lamp="BoxRun"]').waitFor();
  equal(await page.locator('[data-task="frmStatusIOM"] [data-lamp]').count(), 1, "lamps in the task bar");
}

async function before_a_modal_panel_the_others_rest({ page }) {
  holds(await control_of(page, "frmStatus", "cmdStop").evaluate((element) => element.closest("[inert]") !== null), "others rest");
  await control_of(page, "Sampler", "Text").fill("x");
}

async function column_headings_stand_above_their_columns({ page }) {
  const left = async (locator) => (await locator.boundingBox()).x;
  const line = control_of(page, "SimCom", "OffsetsList").locator("li").first();
  const wordLeft = (word) =>
    line.evaluate((element, text) => {
      const range = document.createRange();
      const at = element.firstChild.data.indexOf(text);
      range.setStart(element.firstChild, at);
      range.setEnd(element.firstChild, at + 1);
      return range.getBoundingClientRect().x;
    }, word);
  for (const [label, word] of [["LabelPort", "001"], ["LabelUsedBy", "INTRN"], ["LabelFunctionName", "Airspeed"]]) {
    const off = Math.abs((await left(control_of(page, "SimCom", label))) - (await wordLeft(word)));
    holds(off < 3, `${label} stands ${off} px off its column`);
  }
}

async function nothing_spills_over_at_any_width({ page }) {
  for (const width of [360, 820, 1024, 1920]) {
    await page.setViewportSize({ width, height: 900 });
    const wide = await page.evaluate(() => {
      const room = document.documentElement.clientWidth;
      return [...document.querySelectorAll("body *")]
        .filter((element) => element.getBoundingClientRect().right > room && !element.closest(".list, .row-labels > *"))
        .map((element) => element.id || element.className || element.tagName);
    });
    equal(wide, [], `what does not fit at ${width}`);
    const small = await page.evaluate(() =>
      [...document.querySelectorAll("button, select, input[type=text]")]
        .filter((element) => element.getBoundingClientRect().height < 40)
        .map((element) => element.textContent || element.id));
    equal(small, [], `too small for a finger at ${width}`);
  }
}

async function texts_stand_out_from_their_ground({ page }) {
  const poor = await page.evaluate(() => {
    const parts = (colour) => (colour.match(/[\d.]+/g) ?? []).map(Number);
    const onto = (top, under) => {
      const alpha = top[3] ?? 1;
      return [0, 1, 2].map((at) => top[at] * alpha + under[at] * (1 - alpha));
    };
    // Colours that were mixed come back as shares of 1.
    const colour = (text) => (text.startsWith("color(") ? parts(text).map((part, at) => (at < 3 ? part * 255 : part)) : parts(text));
    const ground = (element) => {
      const own = colour(getComputedStyle(element).backgroundColor);
      const below = () => (element.parentElement ? ground(element.parentElement) : [0, 0, 0]);
      return (own[3] ?? 1) === 1 ? own : onto(own, below());
    };
    const light = (rgb) =>
      rgb.slice(0, 3).map((part) => part / 255).map((part) => (part <= 0.04045 ? part / 12.92 : ((part + 0.055) / 1.055) ** 2.4))
        .reduce((sum, part, at) => sum + part * [0.2126, 0.7152, 0.0722][at], 0);
    const found = [];
    for (const element of document.querySelectorAll("h1, h2, label, legend, output, p, li, span, button:enabled, input, select")) {
      if (element.textContent.trim() === "" || element.closest("[inert], :disabled")) {
        continue;
      }
      const [a, b] = [light(colour(getComputedStyle(element).color)), light(ground(element))];
      const contrast = (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
      if (contrast < 4.5) {
        found.push(`${element.textContent} ${contrast.toFixed(2)}`);
      }
    }
    return found;
  });
  equal(poor, [], "texts of too little contrast");
}

async function every_field_has_a_name({ page }) {
  const nameless = await page.evaluate(() =>
    [...document.querySelectorAll("input, select, output[id], progress, [role=listbox]")]
      .filter((element) => !element.labels?.length && !element.getAttribute("aria-label") && !element.getAttribute("aria-labelledby"))
      .map((element) => element.id));
  equal(nameless, [], "fields without a name");
}

// Each case, and the panels that are open when it begins.
async function a_force_curve_is_dragged_and_moved_with_the_keys({ page, program }) {
  const handle = page.locator('[data-handle="3"]');
  equal(await handle.getAttribute("aria-valuetext"), "60 knots, 30 percent", "what the handle says");
  const said = (text) => ({ type: "control", panel: "frmForceCurve", control: "PictureCurve", event: "change", text });
  await handle.focus();
  await page.keyboard.press("ArrowUp");
  await expectHeard(program, said("down 3800 4000"), said("move 3800 3950"), said("up"));
  const from = await handle.boundingBox();
  const top = await page.locator('[data-handle="10"]').boundingBox();
  const middle = ({ x, y, width, height }) => [x + width / 2, y + height / 2];
  await page.mouse.move(...middle(from));
  await page.mouse.down();
  await page.mouse.move(...middle(top));
  await page.mouse.up();
  await until(() => program.heard.at(-1)?.text === "up", "the end of the drag");
  const texts = heard(program).map((message) => message.text);
  equal([texts[0], texts.at(-1)], ["down 3800 4000", "up"], "begin and end of the drag");
  const [, x, y] = texts.at(-2).split(" ").map(Number);
  holds(Math.abs(x - 10800) < 60 && Math.abs(y - 500) < 60, `it ends at ${x} ${y}`);
}

const cases = [
  [every_kind_of_control_shows_and_acts, [everyKind()]],
  [a_field_keeps_what_is_typed_and_then_shows_what_the_program_made_of_it, [everyKind()]],
  [hidden_and_disabled_controls_follow_the_program, [runPanel()]],
  [the_top_box_keeps_the_keyboard_and_is_answered_first, [runPanel()]],
  [keys_pressed_while_a_box_comes_up_do_not_answer_it, [runPanel()]],
  [a_text_is_asked_for_and_can_be_cancelled, [runPanel()]],
  [a_lost_connection_is_shown_at_once_and_mends_itself, [runPanel()]],
  [a_program_that_falls_silent_is_shown_within_three_seconds, [runPanel()]],
  [minimised_panels_wait_in_the_task_bar, [runPanel(), portPanel()]],
  [a_force_curve_is_dragged_and_moved_with_the_keys, [curvePanel()]],
  [a_board_keeps_its_columns_and_is_silent_when_minimised, [ioPanel()]],
  [before_a_modal_panel_the_others_rest, [runPanel(), everyKind({ modal: true })]],
  [column_headings_stand_above_their_columns, [portPanel()]],
  [nothing_spills_over_at_any_width, [startPanel(), portPanel(), everyKind(), ioPanel(), runPanel()]],
  [texts_stand_out_from_their_ground, [startPanel(), portPanel(), everyKind(), ioPanel(), runPanel()]],
  [every_field_has_a_name, [startPanel(), portPanel(), everyKind(), ioPanel(), runPanel()]],
];

export async function runPageCases(runner, browser) {
  console.log("The page with a scripted program");
  for (const [work, panels] of cases) {
    const { page, program } = await open(browser, panels, sizes.laptop);
    await runner.run(work.name.replaceAll("_", " "), async () => {
      await work({ page, program });
      equal(page.troubles, [], "errors in the page");
    }, page);
    program.stopBeating();
    await page.context().close();
  }
}
