// From the hand on an IO module's board through the control program to the simulator, and back to the board's LEDs.
import { readFile, writeFile } from "node:fs/promises";
import { join } from "node:path";
import { openPage, sizes } from "./browser.mjs";
import { equal, until } from "./case_runner.mjs";
import { Programs } from "./programs.mjs";

const modulePort = 3; // of the demo's first module

// Whoever runs the tests does not want keys pressed on the desktop.
async function forgetKeysToTheDesktop(programs) {
  const file = join(programs.folder, "Default MS-FS.cfg");
  const text = await readFile(file, "latin1");
  await writeFile(file, text.replace(/^(1000,1,\d+,0,0,200,.*),-?\d+,-?\d+$/gm, "$1,0,0"), "latin1");
}

class Switchboard {
  constructor(programs, bench, page) {
    Object.assign(this, { programs, bench, page });
    this.board = bench.locator(`[data-instrument="${modulePort}.0"]`);
  }

  async simulatorSays(name, fits, what) {
    await until(async () => fits(parseFloat(await this.programs.simulator(`get ${name}`))), `${name}: ${what}`);
  }

  // Lit on the panel as red, on the board as on.
  async shows(lamp, index, on) {
    const box = this.page.locator(`[data-panel="frmStatusIOM"] [data-control="${lamp}"][data-index="${index}"]`);
    await until(async () => /lit-red/.test(await box.getAttribute("class")) === on, `${lamp} ${index} ${on}`);
  }

  async lights(led, on) {
    const element = this.board.locator(`[data-led="${led}"]`);
    await until(async () => (await element.getAttribute("data-on")) === String(on), `LED ${led} ${on}`);
  }
}

// A1 switches the navigation lights, C7 shows them.
async function a_lever_switches_the_lights_and_a_led_tells(switchboard) {
  const [led, lever] = [22, switchboard.board.locator('[data-contact="0"]')];
  await switchboard.programs.simulator("set lights 0");
  await switchboard.lights(led, false);
  for (const on of [true, false]) {
    await lever.click();
    await switchboard.simulatorSays("lights", (bits) => ((bits & 1) !== 0) === on, `navigation lights ${on}`);
    await switchboard.shows("boxSwitchIndicator", 0, on);
    await switchboard.shows("boxLedIndicator", led, on);
    await switchboard.lights(led, on);
  }
}

// B1 is the carburettor heat.
async function a_push_button_is_on_and_off_in_turn(switchboard) {
  for (const on of [true, false]) {
    await switchboard.board.locator('[data-contact="8"]').click();
    await switchboard.shows("boxSwitchIndicator", 8, on);
    await switchboard.simulatorSays("carburettor_heat", (value) => (value !== 0) === on, String(on));
  }
}

// C3 warns of little fuel while master 1 is on.
async function a_master_switch_silences_the_leds_bound_to_it(switchboard) {
  const [led, master] = [18, switchboard.board.getByRole("switch", { name: "Master 1" })];
  await switchboard.programs.simulator("set fuel_left 5");
  for (const on of [true, false, true]) {
    await switchboard.shows("boxLedIndicator", led, true);
    await switchboard.lights(led, on);
    await master.click();
  }
  await switchboard.lights(led, false);
}

// C5 and C6 set the autopilot's vertical speed, 100 feet a minute a click. On a busy machine a telegram may come too late, and a
// click with it; so the knob is turned until the value is there.
async function an_encoder_steps_a_value_up_and_down(switchboard) {
  const knob = switchboard.board.locator('[data-knob="encoder20"]');
  const speed = async () => parseFloat(await switchboard.programs.simulator("get ap_vertical_speed_value"));
  for (const [key, way] of [["ArrowRight", 1], ["ArrowLeft", -1]]) {
    const from = await speed();
    const gone = await until(async () => {
      await knob.press(key);
      const steps = (way * ((await speed()) - from)) / 100;
      return steps >= 3 && steps;
    }, `${key} from ${from}`);
    equal(gone, Math.round(gone), "whole steps");
  }
}

// The third one is the mixture.
async function a_slider_moves_a_lever_of_the_simulator(switchboard) {
  const level = switchboard.page.locator('[data-panel="frmStatusIOM"] [data-control="SLiderAnalogue"][data-index="2"]');
  for (const position of ["1023", "0", "512"]) {
    await switchboard.board.locator('[data-fader="pot2"]').fill(position);
    await until(async () => (await level.inputValue()) === position, `the level at ${position}`);
    const wanted = Number(position) / 1023;
    await switchboard.simulatorSays("mixture", (share) => Math.abs(share - wanted) < 0.01, position);
  }
}

async function a_pulled_plug_is_told_and_the_board_works_again_when_it_is_back(switchboard) {
  const line = switchboard.bench.locator(`[data-line="${modulePort}"]`);
  const port = switchboard.page.locator('[data-panel="frmStatusIOM"] [data-control="boxPort"]');
  await line.getByRole("button", { name: "Pull the plug" }).click();
  await until(async () => (await port.textContent()).includes("unplugged"), "the loss");
  await line.getByRole("button", { name: "Plug in" }).click();
  await until(async () => (await port.textContent()).includes("open"), "the port is back");
  await a_lever_switches_the_lights_and_a_led_tells(switchboard);
}

export async function runSwitchboardCases(runner, browser, folder) {
  const programs = await Programs.inFolderOf(folder);
  try {
    await forgetKeysToTheDesktop(programs);
    await programs.startDelay(1);
    await programs.start("simhost");
    await programs.simulator("jump cruise");
    await programs.simulator("pause on");
    const [bench, page] = [await openPage(browser, sizes.desktop), await openPage(browser, sizes.laptop)];
    await bench.goto(await programs.start("bench"));
    await page.goto(await programs.start("cockpit"));
    await page.locator('[data-task="frmStatus"]').getByText("minimised").waitFor({ timeout: 20_000 });
    await page.locator('[data-task="frmStatus"]').click();
    await page.locator('[data-panel="frmStatus"] [data-control="cmdShowIOM"]').click();
    const switchboard = new Switchboard(programs, bench, page);
    for (const work of [
      a_lever_switches_the_lights_and_a_led_tells,
      a_push_button_is_on_and_off_in_turn,
      a_master_switch_silences_the_leds_bound_to_it,
      an_encoder_steps_a_value_up_and_down,
      a_slider_moves_a_lever_of_the_simulator,
      a_pulled_plug_is_told_and_the_board_works_again_when_it_is_back,
    ]) {
      await runner.run(work.name.replaceAll("_", " "), () => work(switchboard), bench);
    }
    equal([...bench.troubles, ...page.troubles], [], "troubles of the pages");
    await bench.context().close();
    await page.context().close();
  } finally {
    await programs.stopAll();
  }
}
