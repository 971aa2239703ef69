import type { JSX } from "preact";

import { CompassRose, Turn } from "../compass";
import { Rotary, type Bench } from "../controls";
import { RoundFace, WarningFlag, Window } from "../round_face";
import { flagOf, numberOf, textOf } from "../store";
import type { Values } from "../protocol";
import { Hub } from "../svg";
import type { Face, FaceProps } from "./face";

const SINGLE = "M 0 -62 L 6 -48 M 0 -62 L -6 -48 M 0 -62 V -18 M 0 18 V 62";
const DOUBLE = "M 0 -62 L 8 -48 H -8 Z M -3.5 -48 V -18 M 3.5 -48 V -18 M -3.5 18 V 56 L 0 62 L 3.5 56 V 18";

function SourceSwitch({ bench, values, number }: { bench: Bench; values: Values; number: 1 | 2 }): JSX.Element {
  return (
    <Rotary
      bench={bench}
      name={`source${number}`}
      label={`Station of needle ${number}`}
      positions={["VOR", "ADF"]}
      first={0}
      position={textOf(values, `source${number}`) === "ADF" ? 1 : 0}
    />
  );
}

function Rmi({ instrument, values, command }: FaceProps): JSX.Element {
  const bench = { instrument, command };
  const [dme1, dme2] = [textOf(values, "dme1"), textOf(values, "dme2")];
  return (
    <RoundFace
      label={`Radio-magnetic indicator, id ${instrument.id}`}
      corners={{
        "bottom-left": <SourceSwitch bench={bench} values={values} number={1} />,
        "bottom-right": <SourceSwitch bench={bench} values={values} number={2} />,
      }}
    >
      <Turn degrees={-numberOf(values, "card")} name="card">
        <CompassRose radius={84} labelSize={13} />
      </Turn>
      <path class="lubber" d="M 0 -78 L -5 -92 H 5 Z" />
      <Turn degrees={numberOf(values, "needle2")} name="needle2">
        <path class="pointer-green" d={DOUBLE} stroke-width={2} opacity={flagOf(values, "parked2") ? 0.45 : 1} />
      </Turn>
      <Turn degrees={numberOf(values, "needle1")} name="needle1">
        <path class="pointer-yellow" d={SINGLE} stroke-width={3} opacity={flagOf(values, "parked1") ? 0.45 : 1} />
      </Turn>
      <Hub radius={7} />
      {dme1 !== "" && <Window x={-65} y={-89} width={35} name="dme1" text={dme1} />}
      {dme2 !== "" && <Window x={65} y={-89} width={35} name="dme2" text={dme2} />}
      <WarningFlag x={0} y={34} text="INOP" shown={flagOf(values, "inop")} name="inop" />
    </RoundFace>
  );
}

export const rmiFace: Face = { component: Rmi, size: () => "large" };
