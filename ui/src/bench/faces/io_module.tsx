// The board of an IO module: 48 switches, 32 LEDs, 8 potentiometers, and what concerns the module as a whole.

import type { ComponentChildren, JSX } from "preact";
import { useMemo } from "preact/hooks";

import { Fader } from "../board_fader";
import { BoardLed, MasterSwitch, ModuleNotes } from "../board_lamp";
import { digitAt, GROUP_SIZE, groupName, LED_GROUPS, POTENTIOMETERS, SWITCH_GROUPS, switchCells } from "../board_layout";
import { SwitchCell } from "../board_switch";
import type { Bench } from "../controls";
import type { Values } from "../protocol";
import { flagOf, limitedOf, numberOf, textOf } from "../store";
import type { Face, FaceProps } from "./face";

const HIGHEST_POSITION = 1023;
const HIGHEST_NOISE = 100;
const SWITCHES = SWITCH_GROUPS * GROUP_SIZE;
const LONGEST_DEBOUNCE_MS = 20;
const MOST_CLICKS = 32;

interface PartProps {
  bench: Bench;
  values: Values;
  /** By number; may be empty. */
  labels: string[];
}

function upTo(count: number): number[] {
  return Array.from({ length: count }, (_, index) => index);
}

function Group({ kind, letter, children }: { kind: string; letter: string; children: ComponentChildren }): JSX.Element {
  return (
    <div class={`board-group board-group-${kind}`} role="group" aria-label={`${kind === "leds" ? "LEDs" : "Switches"} ${letter}`}>
      <span class="board-letter" aria-hidden="true">
        {letter}
      </span>
      <div class="board-cells">{children}</div>
    </div>
  );
}

function Switches({ bench, values, labels }: PartProps): JSX.Element {
  const [types, contacts, switches] = [textOf(values, "types"), textOf(values, "contacts"), textOf(values, "switches")];
  const testSwitch = numberOf(values, "testSwitch");
  return (
    <div class="board-switches">
      {upTo(SWITCH_GROUPS).map((group) => (
        <Group key={group} kind="switches" letter={groupName(group)}>
          {switchCells(types, group).map(({ number, kind }) => (
            <SwitchCell
              key={number}
              bench={bench}
              number={number}
              kind={kind}
              label={labels[number] ?? ""}
              closed={digitAt(contacts, number) === 1}
              on={digitAt(switches, number) === 1}
              secondLabel={kind === "pair" ? (labels[number + 1] ?? "") : ""}
              secondOn={kind === "pair" && digitAt(switches, number + 1) === 1}
              test={testSwitch === number + 1}
            />
          ))}
        </Group>
      ))}
    </div>
  );
}

function Leds({ values, labels }: Omit<PartProps, "bench">): JSX.Element {
  const [leds, masters] = [textOf(values, "leds"), textOf(values, "masters")];
  return (
    <div class="board-leds">
      {upTo(LED_GROUPS).map((group) => (
        <Group key={group} kind="leds" letter={groupName(group)}>
          {upTo(GROUP_SIZE).map((place) => {
            const number = group * GROUP_SIZE + place;
            return (
              <BoardLed
                key={number}
                number={number}
                label={labels[number] ?? ""}
                lit={digitAt(leds, number) === 1}
                masters={digitAt(masters, number)}
              />
            );
          })}
        </Group>
      ))}
    </div>
  );
}

function Potentiometers({ bench, values, labels }: PartProps): JSX.Element {
  return (
    <div class="board-faders" role="group" aria-label="Potentiometers">
      {upTo(POTENTIOMETERS).map((number) => (
        <Fader
          key={number}
          bench={bench}
          name={`pot${number}`}
          label={`Potentiometer ${number + 1}`}
          highest={HIGHEST_POSITION}
          value={limitedOf(values, `pot${number}`, 0, HIGHEST_POSITION)}
          place={String(number + 1)}
          legend={labels[number] ?? ""}
          lie="upright"
        />
      ))}
    </div>
  );
}

function IoModule({ instrument, values, command }: FaceProps): JSX.Element {
  const bench = useMemo(() => ({ instrument, command }), [instrument, command]);
  const power = flagOf(values, "power");
  const { switches = [], leds = [], pots = [] } = instrument.board ?? {};
  return (
    <section class="switchboard" aria-label={`${instrument.typeName.trim()} on port ${instrument.port}`}>
      <div class="board-plate">
        <div class="board-head">
          <span class="board-title">{instrument.typeName.trim()}</span>
          <span class="power-lamp" role="img" aria-label={power ? "Power on" : "Power off"} data-on={power}>
            Power
          </span>
          <MasterSwitch bench={bench} number={1} on={flagOf(values, "master1")} />
          <MasterSwitch bench={bench} number={2} on={flagOf(values, "master2")} />
          <Fader
            bench={bench}
            name="noise"
            label="Noise on the potentiometers"
            highest={HIGHEST_NOISE}
            value={limitedOf(values, "noise", 0, HIGHEST_NOISE)}
            place="Noise"
            legend=""
            lie="flat"
          />
          <ModuleNotes
            testSwitch={limitedOf(values, "testSwitch", 0, SWITCHES)}
            debounce={limitedOf(values, "debounce", 0, LONGEST_DEBOUNCE_MS)}
            clicks={limitedOf(values, "clicks", 0, MOST_CLICKS)}
          />
        </div>
        <Switches bench={bench} values={values} labels={switches} />
        <div class="board-foot">
          <Leds values={values} labels={leds} />
          <Potentiometers bench={bench} values={values} labels={pots} />
        </div>
      </div>
    </section>
  );
}

export const ioModuleFace: Face = { component: IoModule, size: () => "board" };
