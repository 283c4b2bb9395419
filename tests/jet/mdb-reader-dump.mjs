// Writes every table of the .mdb files in a folder as mdbtool dumps it, by way of the package mdb-reader, to
// FILE.TABLE.txt.
import { readFileSync, readdirSync, writeFileSync } from "node:fs";
import MDBReader from "mdb-reader";

const escapes = { "\\": "\\\\", "\t": "\\t", "\r": "\\r", "\n": "\\n" };

function printed(value) {
    if (value === null || value === undefined) return "";
    if (value === true) return "1";
    if (value === false) return "0";
    if (value instanceof Date) return new Date(Math.round(value / 1000) * 1000).toISOString().slice(0, 19).replace("T", " ");
    if (value instanceof Uint8Array) return Buffer.from(value).toString("hex");
    return String(value).replace(/[\\\t\r\n]/g, (c) => escapes[c]);
}

// Known fault of the package (3.2.0): where a long value's row ends it reads the slot before with its flags on, so behind
// a deleted slot (C000) it takes bytes up to the page's end and cuts the value short. It gets a copy without these flags.
function withoutDeletedFlags(bytes) {
    const [pageSize, slots] = bytes[0x14] === 0 ? [2048, 8] : [4096, 12];
    for (let page = 0; page < bytes.length; page += pageSize) {
        if (bytes.toString("latin1", page + 4, page + 8) !== "LVAL") continue;
        for (let slot = bytes.readUInt16LE(page + slots); slot > 0; --slot) {
            bytes[page + slots + 2 * slot + 1] &= 0x1f;
        }
    }
    return bytes;
}

const folder = process.argv[2];
for (const file of readdirSync(folder).filter((name) => name.endsWith(".mdb"))) {
    const reader = new MDBReader(withoutDeletedFlags(readFileSync(`${folder}/${file}`)));
    for (const name of reader.getTableNames()) {
        const table = reader.getTable(name);
        const rows = table.getData();
        if (rows.length !== table.rowCount) throw new Error(`${file} ${name}: row count ${table.rowCount}`);
        const columns = table.getColumns();
        const lines = [columns.map((column) => column.name)];
        for (const row of rows) {
            lines.push(columns.map((column) => {
                const value = row[column.name];
                return column.type === "repid" && value !== null ? `{${value.toUpperCase()}}` : printed(value);
            }));
        }
        writeFileSync(`${folder}/${file}.${name}.txt`, lines.map((line) => line.join("\t") + "\n").join(""));
    }
}
