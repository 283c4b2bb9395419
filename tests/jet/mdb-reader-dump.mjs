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

const folder = process.argv[2];
for (const file of readdirSync(folder).filter((name) => name.endsWith(".mdb"))) {
    const reader = new MDBReader(readFileSync(`${folder}/${file}`));
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
