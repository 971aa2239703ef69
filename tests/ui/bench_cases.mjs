// The virtual cockpit: the real bench, with this test at the program's end of its serial line.
import { access, open } from "node:fs/promises";
import { join } from "node:path";
import { openPage, sizes } from "./browser.mjs";
import { equal, holds, until } from "./case_runner.mjs";
import { Programs } from "./programs.mjs";

const lightsOnWithPower = 192;
const lightsOff = 15;

// The bytes of one frame behind its padding byte.
function frame(id, command, value) {
  const [low, high] = [value & 255, value >> 8];
  return [255, 0, id, (command << 4) | 8 | (high & 2) | (low & 1), low | 1, high | 2, 255];
}

class Bench {
  constructor(browser, programs, address, page) {
    Object.assign(this, { browser, programs, address, page });
    this.port = join(programs.folder, "ports", "COM1");
  }

  async send(...frames) {
    const line = await open(this.port, "r+");
    await line.write(Buffer.from(frames.flat()));
    await line.close();
  }

  // The first instrument of a type, and its id.
  async instrument(type, page = this.page) {
    const tile = page.locator(`[data-instrument][data-type="${type}"]`).first();
    return { tile, id: Number((await tile.getAttribute("data-instrument")).split(".")[1]) };
  }

  figure(name) {
    return this.page.locator(`[data-line="1"] [data-figure="${name}"]`);
  }

  async number(name) {
    return Number((await this.figure(name).textContent()).replaceAll(",", ""));
  }

  async needleStands(tile, needle, steps) {
    const pointer = tile.locator(`[data-needle="${needle}"]`);
    await until(async () => Number(await pointer.getAttribute("data-steps")) === steps, `needle ${needle} at ${steps}`);
  }
}

async function the_needles_go_where_the_telegrams_say(bench) {
  for (const type of [1, 2, 3, 4, 5, 6]) {
    const { tile, id } = await bench.instrument(type);
    await bench.send(frame(id, 5, 300 + type));
    await bench.needleStands(tile, 1, 300 + type);
    if ([3, 5, 6].includes(type)) {
      await bench.send(frame(id, 6, 700 + type));
      await bench.needleStands(tile, 2, 700 + type);
    }
  }
}

async function the_display_shows_its_word_while_it_has_power(bench) {
  const { tile, id } = await bench.instrument(2);
  const display = tile.locator("[data-display]");
  await bench.send(frame(id, 8, lightsOnWithPower), frame(id, 6, 0x45a6));
  await until(async () => (await display.textContent()) === "45.6", "45.6");
  await bench.send(frame(id, 8, lightsOff));
  await until(async () => (await display.textContent()) === "", "nothing");
}

async function the_lights_follow_their_command(bench) {
  const { tile, id } = await bench.instrument(4);
  for (const [bits, lit] of [
    [lightsOff, "false"],
    [lightsOnWithPower, "true"],
  ]) {
    await bench.send(frame(id, 8, bits));
    await until(async () => (await tile.getAttribute("data-lit")) === lit, `lit ${lit}`);
  }
}

async function the_line_counts_what_comes(bench) {
  const [frames, bad] = [await bench.number("frames"), await bench.number("bad frames")];
  await bench.send(frame(200, 5, 1), frame(200, 5, 2), [0, 1, 2], [255, 255, 255]);
  await until(async () => (await bench.number("frames")) === frames + 2, "two frames more");
  await until(async () => (await bench.number("bad frames")) === bad + 1, "one bad frame more");
}

async function the_plug_can_be_pulled_and_put_in_again(bench) {
  const line = bench.page.locator('[data-line="1"]');
  const linked = () => access(bench.port).then(() => true, () => false);
  await line.getByRole("button", { name: "Pull the plug" }).click();
  await until(async () => (await line.getAttribute("data-state")) === "unplugged", "unplugged");
  equal(await linked(), false, "the port");
  await line.getByRole("button", { name: "Plug in" }).click();
  await until(linked, "the port is back");
}

async function two_pages_see_the_same(bench) {
  const other = await openPage(bench.browser, sizes.laptop);
  await other.goto(bench.address);
  const [here, there] = [await bench.instrument(1), await bench.instrument(1, other)];
  await here.tile.getByRole("button").click();
  await here.tile.getByLabel("Fault").selectOption("mute");
  await there.tile.getByText("mute", { exact: true }).waitFor();
  await here.tile.getByLabel("Fault").selectOption("none");
  await there.tile.getByText("mute", { exact: true }).waitFor({ state: "detached" });
  equal(other.troubles, [], "troubles of the other page");
  await other.context().close();
}

async function it_fits_its_window(bench) {
  for (const [name, size] of Object.entries(sizes)) {
    await bench.page.setViewportSize(size);
    const [content, window] = await bench.page.evaluate(() => [document.documentElement.scrollWidth, innerWidth]);
    holds(content <= window, `${name}: ${content} wide in a window of ${window}`);
  }
}

async function a_lost_bench_is_shown_and_found_again(bench) {
  const cockpit = bench.page.locator("[data-connected]");
  await bench.programs.bench.stop("SIGKILL");
  await until(async () => (await cockpit.getAttribute("data-connected")) === "false", "the loss shows", 3000);
  equal(await bench.programs.start("bench"), bench.address, "address after the restart");
  await until(async () => (await cockpit.getAttribute("data-connected")) === "true", "found again");
  const { tile, id } = await bench.instrument(4);
  await bench.send(frame(id, 5, 123));
  await bench.needleStands(tile, 1, 123);
}

export async function runBenchCases(runner, browser, folder) {
  const programs = await Programs.inFolderOf(folder);
  try {
    const address = await programs.start("bench");
    const page = await openPage(browser, sizes.desktop);
    await page.goto(address);
    const bench = new Bench(browser, programs, address, page);
    for (const work of [
      the_needles_go_where_the_telegrams_say,
      the_display_shows_its_word_while_it_has_power,
      the_lights_follow_their_command,
      the_line_counts_what_comes,
      the_plug_can_be_pulled_and_put_in_again,
      two_pages_see_the_same,
      it_fits_its_window,
      a_lost_bench_is_shown_and_found_again,
    ]) {
      await runner.run(work.name.replaceAll("_", " "), () => work(bench), page);
    }
    equal(page.troubles, [], "troubles of the page");
    await page.context().close();
  } finally {
    await programs.stopAll();
  }
}
